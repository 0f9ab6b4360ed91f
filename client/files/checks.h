// The steps of a check, one for each kind of file. Those that come first tell the later ones what
// the device has.
#pragma once

#include "client/files/checked_file.h"
#include "client/files/device_model.h"
#include "client/files/json_document.h"

// The web-name file's lists of modules.
void read_module_lists(json_document &web_names, device_model &device);

void check_fixed_modules(device_folder &home, device_model &device); // af, audio, video
void check_image_processor(device_folder &home, device_model &device);
void check_pattern_modules(device_folder &home, device_model &device);
void check_conf_modules(device_folder &home, device_model &device);

// The web-name file's names and pages.
void check_web_names(json_document &web_names, device_model &device);
void check_descriptions(device_folder &home, device_model &device);

// What the other checks have not asked for: files with names that mean nothing.
void check_other_files(const device_folder &home);

// Saved values, against what the home folder tells.
void check_saved(device_folder &data, device_model &device);
