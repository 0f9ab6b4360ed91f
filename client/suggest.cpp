#include "client/suggest.h"

#include <algorithm>
#include <numeric>

namespace {

// The edit distance between word and name, or between word and a beginning of the name plus one.
size_t unlikeness(const std::string &word, const std::string &name)
{
    std::vector<size_t> row(name.size() + 1); // distance to the beginning of each length
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= word.size(); i++) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= name.size(); j++) {
            const size_t replaced = diagonal + (word[i - 1] == name[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return std::min(row.back(), *std::min_element(row.begin(), row.end()) + 1);
}

} // namespace

std::string most_similar(const std::string &word, const std::vector<std::string> &names)
{
    const size_t longest = 64; // no typing error is that long; also bounds the work
    if (word.size() > longest)
        return "";

    size_t least = word.size() / 3 + 2; // a larger distance is another word
    const std::string *best = nullptr;
    for (const std::string &name : names) {
        const size_t current = name.size() <= longest ? unlikeness(word, name) : least;
        if (current < least) {
            least = current;
            best = &name;
        }
    }
    return best != nullptr ? *best : "";
}
