// The text of ".conf" files:
//
//   file:   { line LF }            the last LF may be missing
//   line:   key "=" value          blanks around each part are ignored
//         | "#" anything           ignored, as is every other line
//   key:    bytes but "=" and blanks; not "#" first
//   value:  DQUOTE bytes DQUOTE    everything from the first to the last quote of the line
//         | bytes                  not DQUOTE first
//
// Lines are written with the quotes, and so every value without LF comes back as it was. A line
// that holds a zero byte, or one quote alone before its value, is what a write cut short leaves
// behind: it is no entry.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct conf_entry {
    std::string key;
    std::string value;
};

// The entries in file order, a key as often as it occurs.
std::vector<conf_entry> parse_conf_text(std::string_view text);

// Whether a line can be made of the two that reads back as them.
bool conf_writable(std::string_view key, std::string_view value);
