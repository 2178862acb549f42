#include "tests/support/example_page.h"

#include <cctype>
#include <map>
#include <regex>
#include <sstream>

namespace {

constexpr char FENCE[] = "```";
constexpr char HEADING[] = "### ";

using Entries = std::vector<std::pair<std::string, std::string>>;

std::string IdentifierOf(const std::string& heading)
{
    std::string identifier;
    bool atWordStart = true;
    for (const char character : heading) {
        const auto code = static_cast<unsigned char>(character);
        if (std::isalnum(code) == 0) {
            atWordStart = true;
            continue;
        }
        identifier += atWordStart ? static_cast<char>(std::toupper(code)) : character;
        atWordStart = false;
    }
    return identifier;
}

// "key: text" starts an entry; a line that begins with spaces continues the one above.
void AppendLine(const std::string& line, Entries& entries)
{
    if (line.compare(0, 2, "  ") == 0 && !entries.empty()) {
        entries.back().second += " " + line.substr(2);
        return;
    }
    const std::size_t colon = line.find(": ");
    entries.emplace_back(line.substr(0, colon), colon == std::string::npos ? "" : line.substr(colon + 2));
}

std::string Filled(std::string text, const std::map<std::string, std::string>& pieces)
{
    static const std::regex piece("%[a-z][a-z0-9-]*");
    std::smatch match;
    std::string filled;
    while (std::regex_search(text, match, piece)) {
        const auto found = pieces.find(match.str());
        filled += match.prefix().str() + (found == pieces.end() ? match.str() : Filled(found->second, pieces));
        text = match.suffix();
    }
    return filled + text;
}

struct PageReader {
    std::string heading;
    std::string blockWord;
    bool isInBlock = false;
    int line = 0;
    std::map<std::string, int> blocksOfHeading;
    std::map<std::string, std::string> pieces;
    Entries entries;
    std::vector<PageExample> examples;

    void Take(const std::string& text)
    {
        ++line;
        if (text.compare(0, 3, FENCE) == 0) {
            isInBlock ? EndBlock() : StartBlock(text.substr(3));
        } else if (isInBlock) {
            AppendLine(text, entries);
        } else if (text.compare(0, 4, HEADING) == 0) {
            heading = IdentifierOf(text.substr(4));
        }
    }

    void StartBlock(const std::string& word)
    {
        isInBlock = true;
        blockWord = word;
        entries.clear();
    }

    void EndBlock()
    {
        isInBlock = false;
        if (blockWord == "arborist-pieces") {
            pieces.insert(entries.begin(), entries.end());
        } else if (blockWord == "arborist") {
            const int number = ++blocksOfHeading[heading];
            PageExample example{heading + (number == 1 ? "" : std::to_string(number)), line, {}};
            for (const auto& [key, text] : entries) {
                example.entries.emplace_back(key, Filled(text, pieces));
            }
            examples.push_back(std::move(example));
        }
    }
};

} // namespace

std::vector<std::string> PageExample::All(const std::string& key) const
{
    std::vector<std::string> all;
    for (const auto& [entryKey, text] : entries) {
        if (entryKey == key) {
            all.push_back(text);
        }
    }
    return all;
}

std::string PageExample::First(const std::string& key, const std::string& fallback) const
{
    const std::vector<std::string> all = All(key);
    return all.empty() ? fallback : all.front();
}

std::vector<PageExample> ReadExamples(const std::string& page)
{
    PageReader reader;
    std::istringstream stream(page);
    for (std::string line; std::getline(stream, line);) {
        reader.Take(line);
    }
    return reader.examples;
}

std::vector<std::string> IncompleteSections(const std::string& page)
{
    std::vector<std::string> incomplete;
    std::size_t start = page.find(std::string("\n") + HEADING);
    while (start != std::string::npos) {
        const std::size_t end = page.find(std::string("\n") + HEADING, start + 1);
        const std::string section = page.substr(start, end == std::string::npos ? end : end - start);
        if (section.find("\n```arborist\n") == std::string::npos || section.find("\nInstead: ") == std::string::npos) {
            incomplete.push_back(section.substr(5, section.find('\n', 1) - 5));
        }
        start = end;
    }
    return incomplete;
}
