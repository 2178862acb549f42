#include "diagnosis/digest/digest.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include <sodium/crypto_auth_hmacsha256.h>
#include <sodium/crypto_hash_sha256.h>
#include <sodium/utils.h>

namespace diagnosis {

namespace {

const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

template<std::size_t SIZE>
std::string Hex(const std::array<unsigned char, SIZE>& bytes)
{
    std::string digits(2 * SIZE + 1, '\0'); // the library writes an end after them
    sodium_bin2hex(digits.data(), digits.size(), bytes.data(), bytes.size());
    digits.pop_back();
    return digits;
}

/// A SHA-256 that takes its text in pieces.
class Sha256 {
public:
    Sha256() { crypto_hash_sha256_init(&mState); }

    void Add(std::string_view text) { crypto_hash_sha256_update(&mState, Bytes(text), text.size()); }
    void AddNumber(std::uint64_t number)
    {
        std::array<char, sizeof number> bytes;
        for (char& byte : bytes) {
            byte = static_cast<char>(number & 0xFF);
            number >>= 8;
        }
        Add({bytes.data(), bytes.size()});
    }
    std::string End()
    {
        std::array<unsigned char, crypto_hash_sha256_BYTES> digest;
        crypto_hash_sha256_final(&mState, digest.data());
        return Hex(digest);
    }

private:
    crypto_hash_sha256_state mState;
};

} // namespace

std::string Sha256Hex(std::string_view text)
{
    Sha256 sum;
    sum.Add(text);
    return sum.End();
}

std::string Sha256HexOf(std::initializer_list<std::string_view> texts)
{
    Sha256 sum;
    for (const std::string_view text : texts) {
        sum.AddNumber(text.size());
        sum.Add(text);
    }
    return sum.End();
}

std::string KeyedHash(std::string_view key, std::string_view text)
{
    static constexpr std::size_t KEPT_DIGITS = 32;
    crypto_auth_hmacsha256_state state;
    crypto_auth_hmacsha256_init(&state, Bytes(key), key.size());
    crypto_auth_hmacsha256_update(&state, Bytes(text), text.size());
    std::array<unsigned char, crypto_auth_hmacsha256_BYTES> digest;
    crypto_auth_hmacsha256_final(&state, digest.data());
    sodium_memzero(&state, sizeof state); // the key can be worked back from it
    return Hex(digest).substr(0, KEPT_DIGITS);
}

} // namespace diagnosis
