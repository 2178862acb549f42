#include <cwchar>

#include <windows.h>

namespace {

constexpr wchar_t REPLACEMENT = 0xFFFD;

// The bytes of a letter by its first one.
std::size_t LengthOf(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

// UTF-16 of one letter: one unit or two; none if the bytes are no UTF-8.
int Decode(const char* bytes, std::size_t length, wchar_t (&units)[2])
{
    const std::size_t needed = LengthOf(*bytes);
    return needed > length ? 0 : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes, static_cast<int>(needed), units, 2);
}

} // namespace

/// Takes the place of mbrtowc in whatever is linked with diagnosis on Windows (--wrap): by it the standard library turns
/// texts into paths, which are UTF-8 in all of our code, and the C library's knows no locale with UTF-8. What is no UTF-8
/// becomes the replacement character, so that no file has such a name.
extern "C" std::size_t __wrap_mbrtowc(wchar_t* target, const char* bytes, std::size_t length, std::mbstate_t* state)
{
    if (bytes == nullptr || length == 0) {
        return 0;
    }
    std::mbstate_t none = 0;
    std::mbstate_t& waiting = state == nullptr ? none : *state;
    wchar_t units[2] = {REPLACEMENT, 0};
    std::size_t taken = 1;
    if (waiting != 0) { // of four bytes three gave the first unit, and the last one gives the second
        units[0] = static_cast<wchar_t>(waiting);
        waiting = 0;
    } else if (const int count = Decode(bytes, length, units)) {
        taken = count == 2 ? 3 : LengthOf(*bytes);
        waiting = count == 2 ? units[1] : 0;
    }
    if (target != nullptr) {
        *target = units[0];
    }
    return units[0] == 0 ? 0 : taken;
}
