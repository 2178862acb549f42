#include "tools/arborist/detection/bad_pattern.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <string_view>

namespace command {

namespace {

std::string Decoded(std::string text)
{
    static constexpr std::pair<std::string_view, char> ENTITIES[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}, {"&amp;", '&'}};
    for (const auto& [entity, letter] : ENTITIES) {
        for (auto at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1)) {
            text.replace(at, entity.size(), 1, letter);
        }
    }
    return text;
}

// The value of the attribute "name" in the tag that starts at `tag`. Plain search serves: the file was read as XML
// before, and a regular expression over a stranger's file could run very long.
std::string NameAttribute(std::string_view text, std::size_t tag)
{
    std::string_view element = text.substr(tag, text.find('>', tag) - tag);
    for (auto at = element.find("name"); at != std::string_view::npos; at = element.find("name", at + 1)) {
        const auto quote = element.find_first_not_of(" \t\r\n=", at + 4);
        if (quote == std::string_view::npos || (element[quote] != '"' && element[quote] != '\'')) {
            continue;
        }
        const auto end = element.find(element[quote], quote + 1);
        return Decoded(std::string(element.substr(quote + 1, end - quote - 1)));
    }
    return "";
}

bool Compiles(const std::string& pattern)
{
    try {
        std::regex compiled(pattern, std::regex::ECMAScript);
        return true;
    } catch (const std::regex_error&) {
        return false;
    }
}

std::string Loaded(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string BadPatterns(const std::string& text)
{
    std::string found;
    for (auto at = text.find("<dbName"); at != std::string::npos; at = text.find("<dbName", at + 1)) {
        const std::string pattern = NameAttribute(text, at);
        if (Compiles(pattern)) {
            continue;
        }
        const auto entry = text.rfind("<defDBTable", at);
        found += (found.empty() ? "" : ", ") + ("\"" + pattern + "\"");
        if (entry != std::string::npos) {
            found += " of the defDBTable \"" + NameAttribute(text, entry) + "\"";
        }
    }
    return found;
}

} // namespace

std::string BadPatternMessage(const std::vector<RecordedFile>& files, const std::string& reason)
{
    for (const RecordedFile& file : files) {
        if (file.kind == DetectionObserver::RuleSetFile::Kind::RULES) {
            const std::string patterns = BadPatterns(Loaded(file.path));
            return file.path + ": the dbName pattern " + (patterns.empty() ? "" : patterns + " ")
                + "is no regular expression: " + reason;
        }
    }
    return "a dbName pattern is no regular expression: " + reason;
}

} // namespace command
