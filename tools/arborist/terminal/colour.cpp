#include "tools/arborist/terminal/colour.h"

#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace diagnosis::command {

namespace {

std::string& ColourWord()
{
    static std::string word = "auto";
    return word;
}

bool IsColoured(int stream)
{
    if (ColourWord() != "auto") {
        return ColourWord() == "always";
    }
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool isUnwanted = noColour != nullptr && *noColour != '\0';
    const bool isDumb = terminal == nullptr || std::string_view(terminal) == "dumb";
    return !isUnwanted && !isDumb && isatty(stream) == 1;
}

} // namespace

void SetColour(const std::string& word)
{
    ColourWord() = word;
}

bool AreResultsColoured()
{
    return IsColoured(STDOUT_FILENO);
}

bool AreMessagesColoured()
{
    return IsColoured(STDERR_FILENO);
}

} // namespace diagnosis::command
