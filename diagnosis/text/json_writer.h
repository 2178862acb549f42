#ifndef ARBORIST_DIAGNOSIS_TEXT_JSON_WRITER_H
#define ARBORIST_DIAGNOSIS_TEXT_JSON_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace diagnosis {

/// Writes one JSON value on one line, with members in the order of the calls, so that readers can diff the lines.
///
/// Texts become valid UTF-8: a byte that belongs to no character is replaced by U+FFFD.
class JsonWriter {
public:
    JsonWriter& BeginObject();
    JsonWriter& EndObject();
    JsonWriter& BeginArray();
    JsonWriter& EndArray();
    /// Writes the name of the next member.
    JsonWriter& Key(std::string_view key);
    JsonWriter& Text(std::string_view text);
    JsonWriter& Number(std::int64_t number);
    JsonWriter& Bool(bool value);
    JsonWriter& Null();
    /// Writes `json`, which must be a JSON value without line ends.
    JsonWriter& Raw(std::string_view json);
    JsonWriter& Texts(const std::vector<std::string>& texts);

    /// Writes a member with its value.
    JsonWriter& Text(std::string_view key, std::string_view text) { return Key(key).Text(text); }
    JsonWriter& Bool(std::string_view key, bool value) { return Key(key).Bool(value); }
    JsonWriter& Number(std::string_view key, std::int64_t number) { return Key(key).Number(number); }
    /// Writes seconds with six decimals, whatever the locale of the process says about them; negative ones as 0.
    JsonWriter& Seconds(std::string_view key, double seconds);
    JsonWriter& Count(std::string_view key, std::uint64_t count) { return Key(key).Raw(std::to_string(count)); }

    const std::string& Line() const { return mLine; }

private:
    void Separate();

    std::string mLine;
    /// For each open object or array: true if it has a member already.
    std::vector<bool> mHasMember;
    bool mAfterKey = false;
};

} // namespace diagnosis

#endif
