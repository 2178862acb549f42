#include "diagnosis/redaction/extra_text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <json/value.h>

#include "diagnosis/redaction/hash_key.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis {

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

/// A value of the text, from its first byte to behind its last.
struct Span {
    std::size_t begin;
    std::size_t end;
    std::string hash;
};

/// Finds the values to replace in one object.
class Search {
public:
    Search(const std::string& text, const std::vector<const LogMembers*>& members, const std::string& key)
        : mText(text), mMembers(members), mKey(key),
          mStart(text.rfind(BYTE_ORDER_MARK, 0) == 0 ? BYTE_ORDER_MARK.size() : 0)
    {
    }

    void Visit(const Json::Value& value)
    {
        if (value.isObject()) {
            for (auto member = value.begin(); member != value.end(); ++member) {
                Take(LowerLetters(member.name()), *member);
            }
        } else if (value.isArray()) {
            for (const Json::Value& item : value) {
                Visit(item);
            }
        }
    }

    /// In the order of the text.
    std::vector<Span> Found()
    {
        std::sort(mFound.begin(), mFound.end(), [](const Span& one, const Span& other) { return one.begin < other.begin; });
        return std::move(mFound);
    }
    const std::set<std::string>& Names() const { return mNames; }
    bool HadQuote() const { return mHadQuote; }

private:
    void Take(const std::string& name, const Json::Value& value)
    {
        const bool isListed = std::any_of(mMembers.begin(), mMembers.end(),
            [&name](const LogMembers* members) { return members->names.count(name) != 0; });
        if (!isListed) {
            Visit(value);
            return;
        }
        // The library counts from behind the byte order mark.
        const std::size_t begin = mStart + static_cast<std::size_t>(value.getOffsetStart());
        const std::size_t end = mStart + static_cast<std::size_t>(value.getOffsetLimit());
        const std::string content = value.isString() ? value.asString() : mText.substr(begin, end - begin);
        if (value.isNull() || content.empty()) {
            return;
        }
        mHadQuote = mHadQuote || content.find('\'') != std::string::npos;
        mNames.insert(name);
        mFound.push_back({begin, end, HashedValue(mKey, content)});
    }

    const std::string& mText;
    const std::vector<const LogMembers*>& mMembers;
    const std::string& mKey;
    std::size_t mStart;
    std::vector<Span> mFound;
    std::set<std::string> mNames;
    bool mHadQuote = false;
};

} // namespace

RedactedExtra RedactExtra(
    const std::string& extra, const std::vector<const LogMembers*>& members, const std::string& key)
{
    RedactedExtra redacted;
    if (extra.empty() || members.empty()) {
        redacted.text = extra;
        return redacted;
    }
    std::string problem;
    const auto json = ParseEngineJson(extra, problem);
    if (!json || !json->isObject()) {
        // No JSON either, so that tests fail as before.
        redacted.text = "redacted " + HashedValue(key, extra);
        redacted.isWhole = true;
        redacted.hadQuote = extra.find('\'') != std::string::npos;
        return redacted;
    }
    Search search(extra, members, key);
    search.Visit(*json);
    std::size_t written = 0;
    for (const Span& span : search.Found()) {
        redacted.text.append(extra, written, span.begin - written).append("\"" + span.hash + "\"");
        written = span.end;
    }
    redacted.text.append(extra, written);
    redacted.members = search.Names();
    redacted.hadQuote = search.HadQuote();
    return redacted;
}

} // namespace diagnosis
