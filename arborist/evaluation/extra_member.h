#ifndef ARBORIST_EVALUATION_EXTRA_MEMBER_H
#define ARBORIST_EVALUATION_EXTRA_MEMBER_H

#include <string>
#include <string_view>

/// Reads members of the JSON text of a logged event, its `extra`, with the full JSON reader.
namespace ExtraMember {

/// The member `key` of a non-empty `extra` as text; see MemberText. Calls `logNoJson` with the reader's message for a
/// text that is no JSON. Tells trouble for that, for a text that is no object, and for a member that is a list or an
/// object.
std::string Read(std::string_view extra, const std::string& key, void (*logNoJson)(const std::string& error));

} // namespace ExtraMember

#endif
