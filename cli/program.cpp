#include "program.h"

#include <cstdio>

#include "output.h"
#include "several.h"

namespace {

exit_code run_on_files(program &all, const command_steps &command)
{
    if (command.files == file_access::none)
        throw failure(USAGE, "\"" + command.name + "\" needs a host, and not --root");
    all.access = command.files;
    const exit_code status = ended_well(command.run); // what it has changed is saved in any case
    if (command.files != file_access::changes)
        return status;
    const std::vector<unsaved_module> unsaved = save_local_store();
    for (const unsaved_module &module : unsaved)
        print_failure({UNSAVED, module.name + " is not saved: " + module.reason});
    return unsaved.empty() || status != DONE ? status : UNSAVED;
}

} // namespace

client program::connect() const
{
    if (root.empty())
        return client(server);
    return client(open_local_store(parse_folders(root), access));
}

void carry_out(program &all, const command_steps &command)
{
    if (all.hosts.size() > 1 && !command.compare)
        throw failure(USAGE, "\"" + command.name + "\" takes one host");
    if (command.prepare)
        command.prepare();
    if (!all.root.empty()) {
        all.status = run_on_files(all, command);
    } else if (all.hosts.size() > 1) {
        all.status = command.compare(run_on_each(all, command.run));
    } else {
        all.status = command.run();
    }
}

exit_code ended_well(const std::function<exit_code()> &run)
{
    try {
        const exit_code status = run();
        if (fflush(stdout) != 0 || ferror(stdout))
            throw failure(OTHER, "cannot write the result");
        return status;
    } catch (const failure &error) {
        print_failure(error);
        return error.code;
    } catch (const std::exception &error) {
        print_failure({OTHER, error.what()});
        return OTHER;
    }
}

void add_form_options(const arguments &command, form_options &given)
{
    const argument number =
        command.flag(given.as_number, "--number", "Send every value as a number");
    command.flag(given.as_text, "--text", "Send every value as a string").excludes(number);
}
