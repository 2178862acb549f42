#ifndef ARBORIST_STORES_COMMON_PART_LOWER_CASE_H
#define ARBORIST_STORES_COMMON_PART_LOWER_CASE_H

#include <algorithm>
#include <string>

/// `text` with the letters A to Z in lower case, in every locale.
inline std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

#endif
