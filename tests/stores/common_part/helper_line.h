#ifndef ARBORIST_TESTS_STORES_COMMON_PART_HELPER_LINE_H
#define ARBORIST_TESTS_STORES_COMMON_PART_HELPER_LINE_H

#include <string>

/// A log line of the helper.
inline std::string Line(const std::string& text)
{
    return "FUNc:CommonPartDbHelper::" + text;
}

#endif
