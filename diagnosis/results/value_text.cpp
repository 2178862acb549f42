#include "diagnosis/results/value_text.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "diagnosis/text/printable.h"

namespace diagnosis::value_text {

std::string Cut(const std::string& text, std::size_t longest)
{
    if (text.size() <= longest) {
        return Printable(text);
    }
    std::size_t length = 0;
    while (length < longest) { // whole characters
        length += std::max<std::size_t>(1, Utf8Length(std::string_view(text).substr(length)));
    }
    return Printable(std::string_view(text).substr(0, length)) + "... (" + std::to_string(text.size()) + " bytes)";
}

std::string Quoted(const std::string& text)
{
    const auto end = text.find_last_not_of(" \t\r\n");
    return "\"" + Cut(end == std::string::npos ? text : text.substr(0, end + 1), LONGEST_VALUE) + "\"";
}

std::string Value(const std::string& text)
{
    static constexpr std::string_view PLAIN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._:/%+-";
    const std::string quoted = Quoted(text);
    const std::string_view inside = std::string_view(quoted).substr(1, quoted.size() - 2);
    const bool isPlain = !inside.empty() && inside.find_first_not_of(PLAIN) == std::string_view::npos;
    return isPlain ? std::string(inside) : quoted;
}

std::string ComparedValue(const std::string& value, const std::string& type)
{
    const bool hasBlankEnd = !value.empty() && std::string_view(" \t\r\n").find(value.back()) != std::string_view::npos;
    return type == "string" && hasBlankEnd ? "\"" + Cut(value, LONGEST_VALUE) + "\"" : Value(value);
}

std::string Sign(const std::string& word)
{
    static constexpr std::pair<std::string_view, const char*> SIGNS[] = {
        {"gt", ">"}, {"lt", "<"}, {"ge", ">="}, {"le", "<="}, {"eq", "="}, {"ne", "!="}};
    for (const auto& [known, sign] : SIGNS) {
        if (word == known) {
            return sign;
        }
    }
    return Printable(word);
}

std::string InParentheses(const std::string& one, const std::string& other)
{
    const std::string both = one + (one.empty() || other.empty() ? "" : ", ") + other;
    return both.empty() ? "" : " (" + both + ")";
}

std::string Number(std::uint64_t number, const std::string& one, const std::string& several)
{
    return std::to_string(number) + " " + (number == 1 ? one : several);
}

} // namespace diagnosis::value_text
