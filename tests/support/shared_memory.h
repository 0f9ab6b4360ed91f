// The share maps of the machine, or of the namespaces that the case runs in.
#pragma once

// Removes all of them, as if no main program had run yet.
void remove_share_maps();
