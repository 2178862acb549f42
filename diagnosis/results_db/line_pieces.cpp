#include "diagnosis/results_db/line_pieces.h"

#include <array>

namespace diagnosis::results_db {

namespace {

constexpr std::size_t NOWHERE = std::string_view::npos;

constexpr std::array<bool, 256> TableOf(std::string_view characters)
{
    std::array<bool, 256> table = {};
    for (const char character : characters) {
        table[static_cast<unsigned char>(character)] = true;
    }
    return table;
}

constexpr auto ENDS_TEXT = TableOf("\"\\");
constexpr auto HAS_MEANING = TableOf("\"{}[]");

/// Walks through the characters of a line. All functions take a place, and return the one behind what they pass, or
/// NOWHERE where the line ends before.
class Walk {
public:
    explicit Walk(std::string_view line) : mLine(line) {}

    bool IsAt(std::size_t at, char character) const { return at < mLine.size() && mLine[at] == character; }

    std::size_t Next(std::size_t at, const std::array<bool, 256>& wanted) const
    {
        while (at < mLine.size() && !wanted[static_cast<unsigned char>(mLine[at])]) {
            ++at;
        }
        return at < mLine.size() ? at : NOWHERE;
    }

    std::size_t PassSpaces(std::size_t at) const
    {
        while (IsAt(at, ' ')) {
            ++at;
        }
        return at;
    }

    // `at` is behind the opening quote.
    std::size_t PassText(std::size_t at) const
    {
        while ((at = Next(at, ENDS_TEXT)) != NOWHERE && mLine[at] == '\\') {
            at += 2;
        }
        return at == NOWHERE ? NOWHERE : at + 1;
    }

    // `at` is an opening bracket.
    std::size_t PassBrackets(std::size_t at) const
    {
        for (std::size_t depth = 0; (at = Next(at, HAS_MEANING)) != NOWHERE;) {
            const char character = mLine[at++];
            if (character == '"') {
                at = PassText(at);
                if (at == NOWHERE) {
                    return NOWHERE;
                }
            } else if (character == '{' || character == '[') {
                ++depth;
            } else if (--depth == 0) {
                return at;
            }
        }
        return NOWHERE;
    }

    // `at` is behind the bracket that opens a list of objects; appends them.
    std::size_t PassObjects(std::size_t at, std::vector<std::string_view>& objects) const
    {
        at = PassSpaces(at);
        for (bool isFirst = true; !IsAt(at, ']') || !isFirst; isFirst = false) {
            if (!IsAt(at, '{')) {
                return NOWHERE;
            }
            const std::size_t end = PassBrackets(at);
            if (end == NOWHERE) {
                return NOWHERE;
            }
            objects.push_back(mLine.substr(at, end - at));
            at = PassSpaces(end);
            if (IsAt(at, ']')) {
                break;
            }
            if (!IsAt(at, ',')) {
                return NOWHERE;
            }
            at = PassSpaces(at + 1);
        }
        return at + 1;
    }

private:
    std::string_view mLine;
};

} // namespace

bool CutLine(std::string_view line, LinePieces& pieces)
{
    pieces.frame.clear();
    pieces.warnings.clear();
    pieces.results.clear();
    const Walk walk(line);
    std::size_t kept = 0;
    if (!walk.IsAt(0, '{')) {
        return false;
    }
    for (std::size_t at = walk.Next(1, HAS_MEANING); at != NOWHERE; at = walk.Next(at, HAS_MEANING)) {
        if (line[at] == '}') {
            pieces.frame.append(line.substr(kept));
            return true;
        }
        if (line[at] != '"') {
            at = walk.PassBrackets(at);
            continue;
        }
        const std::size_t end = walk.PassText(at + 1);
        const std::string_view text = line.substr(at, end == NOWHERE ? 0 : end - at);
        const bool isWarnings = text == "\"warnings\"";
        at = end;
        if ((isWarnings || text == "\"results\"") && walk.IsAt(end, ':')) {
            const std::size_t list = walk.PassSpaces(end + 1);
            if (!walk.IsAt(list, '[')) {
                return false;
            }
            at = walk.PassObjects(list + 1, isWarnings ? pieces.warnings : pieces.results);
            pieces.frame.append(line.substr(kept, list + 1 - kept)).append("]");
            kept = at;
        }
    }
    return false;
}

} // namespace diagnosis::results_db
