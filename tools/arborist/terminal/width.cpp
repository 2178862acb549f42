#include "tools/arborist/terminal/width.h"

#include <optional>
#include <sstream>

namespace diagnosis::command {

namespace {

// The column at which the description begins: 0 for a plain paragraph, nothing for a line that must not be broken.
std::optional<std::size_t> IndentOf(const std::string& line)
{
    const auto first = line.find_first_not_of(' ');
    if (first == 0 || first == std::string::npos) {
        return 0;
    }
    const auto gap = line.find("  ", first);
    const auto description = gap == std::string::npos ? gap : line.find_first_not_of(' ', gap);
    return description == std::string::npos ? (first > 4 ? std::optional(first) : std::nullopt)
                                            : std::optional(description);
}

void AppendWrapped(std::string& text, std::string line, std::size_t width)
{
    const auto indent = IndentOf(line);
    while (indent && line.size() > width && *indent + 8 < width) {
        const auto end = line.rfind(' ', width);
        if (end == std::string::npos || end <= *indent) {
            break; // one long word
        }
        text += line.substr(0, end) + "\n";
        line = std::string(*indent, ' ') + line.substr(end + 1);
    }
    text += line + "\n";
}

} // namespace

std::string WrapHelp(const std::string& help, std::size_t width)
{
    std::istringstream lines(help);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        AppendWrapped(text, std::move(line), width);
    }
    return text;
}

} // namespace diagnosis::command
