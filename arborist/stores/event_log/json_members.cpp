#include "arborist/stores/event_log/json_members.h"

#include <cstddef>

namespace {

// Numbers of this many digits fit into 64 bits, so that the full reader would return the same text.
constexpr std::size_t SAFE_DIGITS = 18;

class PlainReader {
public:
    explicit PlainReader(std::string_view text) : mNext(text.data()), mEnd(text.data() + text.size()) {}

    bool Take(char expected)
    {
        SkipBlanks();
        if (mNext == mEnd || *mNext != expected) {
            return false;
        }
        ++mNext;
        return true;
    }

    bool IsAtEnd()
    {
        SkipBlanks();
        return mNext == mEnd;
    }

    // Takes a string without escapes.
    bool TakeString(std::string_view& content)
    {
        if (!Take('"')) {
            return false;
        }
        const char* const begin = mNext;
        while (mNext != mEnd && *mNext != '"' && *mNext != '\\') {
            ++mNext;
        }
        if (mNext == mEnd || *mNext == '\\') {
            return false;
        }
        content = Since(begin);
        ++mNext;
        return true;
    }

    bool TakeValue(std::string_view& content)
    {
        SkipBlanks();
        if (mNext == mEnd) {
            return false;
        }
        switch (*mNext) {
        case '"':
            return TakeString(content);
        case 't':
            return TakeWord("true", content);
        case 'f':
            return TakeWord("false", content);
        case 'n': {
            std::string_view ignored;
            content = {};
            return TakeWord("null", ignored);
        }
        default:
            return TakeInteger(content);
        }
    }

private:
    void SkipBlanks()
    {
        while (mNext != mEnd && (*mNext == ' ' || *mNext == '\t' || *mNext == '\n' || *mNext == '\r')) {
            ++mNext;
        }
    }

    std::string_view Since(const char* begin) const { return {begin, static_cast<std::size_t>(mNext - begin)}; }

    bool TakeWord(std::string_view word, std::string_view& content)
    {
        content = std::string_view(mNext, static_cast<std::size_t>(mEnd - mNext)).substr(0, word.size());
        mNext += content.size();
        return content == word && IsAfterValue();
    }

    // Takes an integer only in the form in which the full reader writes it: no leading zeros, no plus, no minus zero.
    bool TakeInteger(std::string_view& content)
    {
        const char* const begin = mNext;
        const bool isNegative = *mNext == '-';
        mNext += isNegative ? 1 : 0;
        const char* const digits = mNext;
        while (mNext != mEnd && *mNext >= '0' && *mNext <= '9') {
            ++mNext;
        }
        const auto count = static_cast<std::size_t>(mNext - digits);
        content = Since(begin);
        const bool isCanonical = count != 0 && count <= SAFE_DIGITS && (*digits != '0' || content.size() == 1);
        return isCanonical && IsAfterValue();
    }

    // True if the next character ends the value; false before a fraction, for example.
    bool IsAfterValue()
    {
        SkipBlanks();
        return mNext != mEnd && (*mNext == ',' || *mNext == '}');
    }

    const char* mNext;
    const char* const mEnd;
};

} // namespace

bool ReadPlainMembers(
    std::string_view text, const std::vector<std::string>& keys, std::vector<std::string_view>& values)
{
    values.assign(keys.size(), {});
    PlainReader reader(text);
    if (!reader.Take('{')) {
        return false;
    }
    if (reader.Take('}')) {
        return reader.IsAtEnd();
    }
    do {
        std::string_view name;
        std::string_view value;
        if (!reader.TakeString(name) || !reader.Take(':') || !reader.TakeValue(value)) {
            return false;
        }
        for (std::size_t number = 0; number < keys.size(); ++number) {
            if (keys[number] == name) {
                values[number] = value; // the last of several members with one name counts
            }
        }
    } while (reader.Take(','));
    return reader.Take('}') && reader.IsAtEnd();
}
