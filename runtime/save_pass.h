// Writing the modules' current values.
#pragma once

// due: the modules that need it; forced: all that can be saved.
enum class save_mode { due, forced };

// Saves, and flushes the file systems when any module was written. Waits for a pass on another
// thread. Returns 0.
int save_param(save_mode mode);
