// Where the values of a JSON text stand: the library that parses it does not tell.
#pragma once

#include <string_view>
#include <vector>

// The line, from 1, of each value in the order of the text: a member's is that of its key, and
// stands before those of what it holds. The text must be JSON up to the end of the first value;
// what follows that adds lines of no meaning.
std::vector<int> json_lines(std::string_view text);

// A place in a text, both from 1.
struct text_place {
    int line, column;
};
text_place place_of(std::string_view text, size_t offset);
