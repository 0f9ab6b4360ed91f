"""Leaves out of the guide what is no page: sources of other documents."""


def on_files(files, config):
    for file in list(files):
        if file.src_path.endswith((".scd", ".awk", ".py", ".txt", "Doxyfile")):
            files.remove(file)
    return files
