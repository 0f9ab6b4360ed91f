// Hooks, by which the store notifies the host of changes.
#pragma once

// Sets every hook of para_profile except conf_save_hook to a function that logs a change. The host
// of a real camera would drive lens, encoders and image processor from here.
void install_hooks();

// Lets the store write the files of conf modules.
void let_conf_files_be_written();
