#include "diagnosis/results_db/line_pieces.h"

#include <algorithm>
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

/// Cuts one line.
class Cutter {
public:
    Cutter(std::string_view line, LinePieces& pieces) : mLine(line), mWalk(line), mPieces(pieces) {}

    bool Cut()
    {
        if (!mWalk.IsAt(0, '{')) {
            return false;
        }
        for (std::size_t at = mWalk.Next(1, HAS_MEANING); at != NOWHERE; at = mWalk.Next(at, HAS_MEANING)) {
            if (mLine[at] == '}') {
                Keep(mLine.size(), "");
                return true;
            }
            if (mLine[at] != '"') {
                at = mWalk.PassBrackets(at);
            } else {
                const std::size_t end = mWalk.PassText(at + 1);
                at = end != NOWHERE && mWalk.IsAt(end, ':')
                    ? PassMember(mLine.substr(at, end - at), mWalk.PassSpaces(end + 1)) : end;
            }
        }
        return false;
    }

private:
    // Passes the value at `at` of a member if it is one to cut out; otherwise stays before it.
    std::size_t PassMember(std::string_view key, std::size_t at)
    {
        if (key == "\"warnings\"" || key == "\"results\"") {
            return mWalk.IsAt(at, '[') ? PassList(at, key == "\"results\"" ? mPieces.results : mPieces.warnings) : NOWHERE;
        }
        if (key == "\"seconds\"") {
            return PassNumber(at);
        }
        auto* const text = key == "\"bundle\"" ? &mPieces.bundle
            : key == "\"device\""              ? &mPieces.device
            : key == "\"now\""                 ? &mPieces.now
                                               : nullptr;
        return text == nullptr || !mWalk.IsAt(at, '"') ? at : PassPlainText(at, *text);
    }

    std::size_t PassList(std::size_t at, std::vector<std::string_view>& objects)
    {
        const std::size_t end = mWalk.PassObjects(at + 1, objects);
        if (end != NOWHERE) {
            Keep(at, "[]");
            mKept = end;
        }
        return end;
    }

    std::size_t PassPlainText(std::size_t at, std::optional<std::string_view>& text)
    {
        const std::size_t end = mWalk.PassText(at + 1);
        const std::string_view content = mLine.substr(at + 1, end == NOWHERE ? 0 : end - at - 2);
        const auto isPlain = [](char byte) { return byte != '\\' && static_cast<unsigned char>(byte) >= 0x20; };
        if (end != NOWHERE && !text && std::all_of(content.begin(), content.end(), isPlain)) {
            text = content;
            Keep(at, "\"\"");
            mKept = end;
        }
        return end;
    }

    // Digits, a point, digits.
    std::size_t PassNumber(std::size_t at)
    {
        const std::size_t point = mLine.find_first_not_of("0123456789", at);
        const std::size_t end = mWalk.IsAt(point, '.') ? mLine.find_first_not_of("0123456789", point + 1) : NOWHERE;
        const bool isNumber = end != NOWHERE && point > at && end > point + 1 && (mLine[at] != '0' || point == at + 1)
            && (mWalk.IsAt(end, ',') || mWalk.IsAt(end, '}'));
        if (!isNumber || mPieces.seconds) {
            return at;
        }
        mPieces.seconds = mLine.substr(at, end - at);
        Keep(at, "0");
        mKept = end;
        return end;
    }

    // Appends what was not kept yet, up to `at`, to the frame, and a text in place of what is cut out there.
    void Keep(std::size_t at, std::string_view instead)
    {
        mPieces.frame.append(mLine.substr(mKept, at - mKept)).append(instead);
        mKept = at;
    }

    std::string_view mLine;
    Walk mWalk;
    LinePieces& mPieces;
    std::size_t mKept = 0;
};

} // namespace

bool CutLine(std::string_view line, LinePieces& pieces)
{
    pieces.frame.clear();
    pieces.warnings.clear();
    pieces.results.clear();
    pieces.bundle = pieces.device = pieces.now = pieces.seconds = std::nullopt;
    return Cutter(line, pieces).Cut();
}

} // namespace diagnosis::results_db
