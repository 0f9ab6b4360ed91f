// What of the settings is not in the files.
#pragma once

// Tells in a message of each module that could not be saved. Returns whether one loses changes
// should the host end now.
bool tell_unsaved();
