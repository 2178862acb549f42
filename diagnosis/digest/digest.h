#ifndef ARBORIST_DIAGNOSIS_DIGEST_DIGEST_H
#define ARBORIST_DIAGNOSIS_DIGEST_DIGEST_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace diagnosis {

/// The SHA-256 of a text as 64 hexadecimal digits in lower case.
std::string Sha256Hex(std::string_view text);

/// The SHA-256 of several texts. The length of each, in eight bytes, the lowest first, goes before it, so that moving
/// bytes from one text to the next changes the digest.
std::string Sha256HexOf(std::initializer_list<std::string_view> texts);

/// A name for a text that nobody finds the text from, or compares with names under another key, who doesn't have the
/// key: HMAC-SHA256, the first 32 hexadecimal digits. A key may have any length.
std::string KeyedHash(std::string_view key, std::string_view text);

} // namespace diagnosis

#endif
