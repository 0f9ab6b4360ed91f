// What is wrong with a device's files.
#pragma once

#include <string>

struct finding {
    std::string file;
    int line;           // from 1; 0: the file as a whole
    std::string member; // its path in the file, such as "video0.gop"; empty: the file as a whole
    std::string reason;
    bool is_warning; // it works, though perhaps not as it is meant
};
