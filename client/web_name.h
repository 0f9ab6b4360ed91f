// Names of web pages, and how the store reads and shows what stands under them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "client/setting.h"

struct web_name {
    std::string name;
    std::string type;     // "S": a text, anything else a number
    std::string modifier; // such as "K"; mostly empty
    setting_name setting;
};

// The names on a page; none when the host does not tell them.
std::vector<web_name> names_of_page(client &host, const std::string &page);

// The number that the store reads from a text; nothing from one that is none, which it would take
// for 0 or for its beginning.
std::optional<int> number_of_web_text(const web_name &name, const std::string &text);

// How a page shows a number.
std::string web_text_of(const web_name &name, int number);
