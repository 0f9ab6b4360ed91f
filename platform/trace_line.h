// The text of a trace message as a line.
#pragma once

#include <string>
#include <string_view>

// The message as one line. The line breaks that its format ends with become one, and every other
// control character an escape: \n, \r, \t, or \x and two digits for each byte. Control characters
// are those of ASCII and, in UTF-8, U+0080 to U+009F, which terminals obey too; other bytes pass.
std::string trace_line(std::string_view format, std::string_view message);
