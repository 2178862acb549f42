#include "diagnosis/text/file_pattern.h"

#include <optional>
#include <regex>

namespace diagnosis {

namespace {

bool IsIn(char character, std::string_view characters)
{
    return characters.find(character) != std::string_view::npos;
}

// The character that the pattern stands for at its beginning, which is cut off; nothing if it may stand for several.
std::optional<char> TakeLiteral(std::string_view& pattern)
{
    const bool isEscaped = pattern.size() > 1 && pattern.front() == '\\';
    const char character = pattern[isEscaped ? 1 : 0];
    const bool isLiteral = isEscaped ? IsIn(character, "/.-_:^$()[]{}*+?\\") : !IsIn(character, "^$\\.*+?()[]{}");
    if (!isLiteral) {
        return std::nullopt;
    }
    pattern.remove_prefix(isEscaped ? 2 : 1);
    return character;
}

} // namespace

bool IsFilePattern(const std::string& pattern)
{
    static constexpr std::size_t LONGEST = 4096;
    if (pattern.size() > LONGEST) {
        return false;
    }
    try {
        std::regex compiled(pattern, std::regex::ECMAScript);
        return true;
    } catch (const std::regex_error&) {
        return false;
    }
}

std::string LiteralStart(std::string_view pattern)
{
    std::string start;
    if (IsIn('|', pattern)) {
        return start;
    }
    pattern.remove_prefix(pattern.starts_with('^') ? 1 : 0);
    while (!pattern.empty()) {
        const std::optional<char> character = TakeLiteral(pattern);
        if (!character || (!pattern.empty() && IsIn(pattern.front(), "*?{"))) {
            break; // what may be left out doesn't count
        }
        start += *character;
    }
    return start;
}

} // namespace diagnosis
