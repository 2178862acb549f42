#ifndef ARBORIST_TESTS_SUPPORT_PATTERN_H
#define ARBORIST_TESTS_SUPPORT_PATTERN_H

#include <regex>
#include <string>

#include <gmock/gmock.h>

/// Like testing::ContainsRegex and testing::MatchesRegex, whose patterns have no brackets and groups on Windows. A pattern
/// is that of std::regex.
MATCHER_P(ContainsPattern, pattern, "contains the pattern " + testing::PrintToString(pattern))
{
    return std::regex_search(arg, std::regex(pattern));
}

MATCHER_P(MatchesPattern, pattern, "matches the pattern " + testing::PrintToString(pattern))
{
    return std::regex_match(arg, std::regex(pattern));
}

#endif
