// What an operation is done with, as the input has it.
#include <algorithm>
#include <climits>
#include <iterator>

#include "fuzz/model/life.h"

int life::chosen_value(int min, int max, int current)
{
    const int small = static_cast<signed char>(input.byte());
    const long long values[] = {min, max, min - 1LL, max + 1LL, current, small, INT_MIN, INT_MAX};
    const long long value = values[input.choice(std::size(values))];
    return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

// A known text, whole or cut, or another one.
std::string life::chosen_text(const name_list &known)
{
    const uint8_t choice = input.byte();
    if (!known.empty() && choice < 200) {
        const std::string &text = known[choice % known.size()];
        return choice < 150 ? text : text.substr(0, input.byte() % (text.size() + 1));
    }
    if (choice < 210)
        return std::string(254 + choice % 4, 'x'); // about the longest that is read by its key
    std::string text = input.bytes(choice % 16);
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    return text;
}

std::string life::chosen_key(const std::vector<std::string> &known)
{
    const uint8_t choice = input.byte();
    return known[choice % known.size()] + (choice > 240 ? "X" : "");
}
