// A number for the set of settings that there is.
#pragma once

// It is another one when a module or member has come or gone, or a member has another kind, range
// or list of names. 1 to 2147483647; 0 when memory ran out.
// Store's thread only.
int revision_of_settings();
