// Values of a whole camera, or of a part of it: {"isp0": {"contrast": 7}, ...}.
#pragma once

#include "client/selection.h"

// Of what can be set; secrets are left out where the description lacks their values.
json_ptr dump_of(const std::vector<described_setting> &settings);

// Reads a dump, "-": from standard input. Throws a failure for what is none.
json_ptr read_dump(const std::string &path);
