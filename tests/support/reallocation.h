// A look into what happens while a text grows: programs that use this replace the C library's
// realloc(), by which the store makes the texts of files and replies.
#pragma once

// Called at each reallocation of this process, on the thread that asks for it; what it allocates
// itself is not told. Returns whether there is memory. Null: there is, and nothing is called.
using reallocation_hook = bool (*)();
void on_reallocation(reallocation_hook hook);
