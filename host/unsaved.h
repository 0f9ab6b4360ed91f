// What of the settings is not in the files.
#pragma once

#include <string>
#include <vector>

struct unsaved_module {
    const char *name;
    std::string reason;
    bool loses_changes; // it has changes that its file should hold, and does not
};

// The modules that could not be saved, in the order of the module table: the last save failed, or
// there are changes that no save will write. Any thread.
std::vector<unsaved_module> unsaved_modules();

// Whether a save would write nothing new. Any thread.
bool all_is_written();

// Tells of each of them in a message. Returns whether one loses changes should the host end now.
bool tell_unsaved();
