#ifndef ARBORIST_DIAGNOSIS_DIGEST_DIGEST_H
#define ARBORIST_DIAGNOSIS_DIGEST_DIGEST_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace diagnosis {

/// The SHA-256 of a text as 64 hexadecimal digits in lower case. Kept for the tests, which compare it with published
/// digests.
std::string Sha256Hex(std::string_view text);

/// The SHA-256 of several texts, each behind its length in eight bytes, lowest byte first: moving bytes from one text to
/// the next changes the digest.
std::string Sha256HexOf(std::initializer_list<std::string_view> texts);

/// The first 32 hexadecimal digits of HMAC-SHA256. Without the key nobody finds the text of a hash, nor compares hashes
/// under different keys. A key may have any length.
std::string KeyedHash(std::string_view key, std::string_view text);

} // namespace diagnosis

#endif
