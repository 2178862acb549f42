#ifndef ARBORIST_DIAGNOSIS_TEXT_JSON_WRITER_H
#define ARBORIST_DIAGNOSIS_TEXT_JSON_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace diagnosis {

/// Writes one JSON value on one line, members in the order in which they are written: readers diff the lines.
///
/// Texts come out as valid UTF-8 whatever bytes they hold: a byte that belongs to no character becomes U+FFFD.
class JsonWriter {
public:
    JsonWriter& BeginObject();
    JsonWriter& EndObject();
    JsonWriter& BeginArray();
    JsonWriter& EndArray();
    /// Name of the member that comes next.
    JsonWriter& Key(std::string_view key);
    JsonWriter& Text(std::string_view text);
    JsonWriter& Number(std::int64_t number);
    JsonWriter& Bool(bool value);
    JsonWriter& Null();
    /// `json` is a JSON value already, without line ends.
    JsonWriter& Raw(std::string_view json);
    JsonWriter& Texts(const std::vector<std::string>& texts);

    /// A member with its value.
    JsonWriter& Text(std::string_view key, std::string_view text) { return Key(key).Text(text); }
    JsonWriter& Bool(std::string_view key, bool value) { return Key(key).Bool(value); }

    const std::string& Line() const { return mLine; }

private:
    void Separate();

    std::string mLine;
    /// Whether the object or array that is open at each depth has a member yet.
    std::vector<bool> mHasMember;
    bool mAfterKey = false;
};

} // namespace diagnosis

#endif
