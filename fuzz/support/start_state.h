// Brings a started store back to its values after start-up.
#pragma once

// Takes note of them.
void keep_start_state();

// Restores them when anything was changed or written since. Empties the data folder.
void restore_start_state();
