// What of the settings is not in the files.
#pragma once

// Whether a save would write nothing new. Any thread.
bool all_is_written();
