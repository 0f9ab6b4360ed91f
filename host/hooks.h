// The hooks by which the store tells the host of changes.
#pragma once

// Puts a hook into every field of para_profile that tells of something; each logs a line when it is
// called. A camera's own host would drive the lens, the encoders and the image processor from here.
void install_hooks();

// Lets the store write the files of conf modules.
void let_conf_files_be_written();
