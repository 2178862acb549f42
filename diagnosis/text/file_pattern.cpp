#include "diagnosis/text/file_pattern.h"

#include <regex>

namespace diagnosis {

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

} // namespace diagnosis
