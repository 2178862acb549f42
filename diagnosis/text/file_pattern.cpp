#include "diagnosis/text/file_pattern.h"

#include <regex>

namespace diagnosis {

bool IsFilePattern(const std::string& pattern)
{
    if (pattern.size() > LONGEST_FILE_PATTERN) {
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
