// The text of ".conf" files:
//
//   file:   { line LF }            the last LF may be missing
//   line:   key "=" value          blanks around each part are ignored
//         | "#" anything           ignored, as is every other line
//   key:    bytes but "=" and blanks; not "#" first
//   value:  DQUOTE bytes DQUOTE    everything from the first to the last quote of the line
//         | bytes                  not DQUOTE first
//
// Values are written with quotes, so that each value without LF is read back unchanged. A line with
// a zero byte or an unterminated quote is the remains of an interrupted write, and is skipped.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

// What a configure object holds at most: the bytes are those of its keys and values.
constexpr size_t conf_most_keys = 4096;
constexpr size_t conf_most_bytes = size_t{1} << 20;

// Parts of the text that was parsed.
struct conf_entry {
    std::string_view key;
    std::string_view value;
};

// The last value of each key, at the first place of the key; nothing when there are more keys than
// conf_most_keys. What it allocates is bounded by them, not by the length of the text.
std::optional<std::vector<conf_entry>> parse_conf_text(std::string_view text);

// Whether key and value can be written as a line that parses to the same pair.
bool conf_writable(std::string_view key, std::string_view value);
