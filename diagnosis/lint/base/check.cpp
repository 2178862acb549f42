#include "diagnosis/lint/base/check.h"

#include <array>

namespace diagnosis::lint {

namespace {

constexpr std::array<const char*, 3> SEVERITY_WORDS = {"info", "warning", "error"};

} // namespace

const char* SeverityWord(Severity severity)
{
    return SEVERITY_WORDS[static_cast<std::size_t>(severity)];
}

std::optional<Severity> SeverityOf(std::string_view word)
{
    for (std::size_t index = 0; index < SEVERITY_WORDS.size(); ++index) {
        if (word == SEVERITY_WORDS[index]) {
            return static_cast<Severity>(index);
        }
    }
    return std::nullopt;
}

} // namespace diagnosis::lint
