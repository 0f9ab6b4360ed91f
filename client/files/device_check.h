// Looks for faults in the files of a device, without a store.
#pragma once

#include <vector>

#include "client/files/finding.h"

// What is wrong with the files of a home folder and, if it is not empty, of a data folder, by file
// and line. Throws a failure for a folder that is not there or cannot be read.
std::vector<finding> check_device(const std::string &home, const std::string &data);
