#ifndef ARBORIST_TESTS_STORES_COMMON_PART_ROW_TEXTS_H
#define ARBORIST_TESTS_STORES_COMMON_PART_ROW_TEXTS_H

#include <string>
#include <vector>

#include <json/value.h>

/// The members of each row as a text, "a=1 b=x".
inline std::vector<std::string> TextsOf(const std::vector<Json::Value>& rows)
{
    std::vector<std::string> texts;
    for (const Json::Value& row : rows) {
        std::string& text = texts.emplace_back();
        for (const std::string& name : row.getMemberNames()) {
            text += (text.empty() ? "" : " ") + name + "=" + row[name].asString();
        }
    }
    return texts;
}

#endif
