#include "tools/arborist/terminal/colour.h"

#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace diagnosis::command {

std::optional<bool> IsColoured(const std::string& word)
{
    if (word == "always" || word == "never") {
        return word == "always";
    }
    if (word != "auto") {
        return std::nullopt;
    }
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool isUnwanted = noColour != nullptr && *noColour != '\0';
    const bool isDumb = terminal == nullptr || std::string_view(terminal) == "dumb";
    return !isUnwanted && !isDumb && isatty(STDOUT_FILENO) == 1;
}

} // namespace diagnosis::command
