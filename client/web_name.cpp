#include "client/web_name.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <regex>

namespace {

bool is_decimal(const std::string &text)
{
    static const std::regex form(R"([-+]?([0-9]+(\.[0-9]*)?|\.[0-9]+))");
    return std::regex_match(text, form);
}

template <typename number> std::string printed(const char *format, number value)
{
    char text[64];
    snprintf(text, sizeof text, format, value);
    return text;
}

} // namespace

std::vector<web_name> names_of_page(client &host, const std::string &page)
{
    json_ptr data(cJSON_CreateObject());
    cJSON_AddStringToObject(data.get(), "page", page.c_str());
    const json_ptr answer = host.call("api_get", "pages", std::move(data));
    std::vector<web_name> names;
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, member_of(answer.get(), "names"))
    {
        const auto text = [&](const char *key) { return string_of(member_of(name, key)); };
        names.push_back(
            {text("name"), text("type"), text("modifier"), {text("module"), text("member")}});
    }
    return names;
}

std::optional<int> number_of_web_text(const web_name &name, const std::string &text)
{
    if (name.modifier == "P") // the store reads 0 from any text
        return 0;
    if (name.modifier != "K") {
        const double whole = is_decimal(text) ? std::stod(text) : NAN;
        const bool is_int = name.modifier == "F" && whole == std::trunc(whole);
        return is_int ? parse_int(printed("%.0f", whole)) : parse_int(text);
    }
    const double thousands = is_decimal(text) ? std::trunc(std::stod(text) * 1000.0) : NAN;
    if (!(thousands >= std::numeric_limits<int>::min() &&
          thousands <= std::numeric_limits<int>::max()))
        return std::nullopt;
    return static_cast<int>(thousands);
}

std::string web_text_of(const web_name &name, int number)
{
    if (name.modifier == "K" && number % 1000 != 0)
        return printed("%.1f", static_cast<double>(static_cast<float>(number) / 1000.0F));
    if (name.modifier == "K")
        return std::to_string(number / 1000);
    if (name.modifier == "P")
        return std::to_string(number + 1);
    return name.modifier == "F" ? printed("%.2f", static_cast<double>(number))
                                : std::to_string(number);
}
