#ifndef ARBORIST_UTILITIES_STRING_UTIL_H
#define ARBORIST_UTILITIES_STRING_UTIL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Converts text to numbers, with a default on failure, and splits and trims text. Stateless; no function throws.
///
/// All conversions accept leading white space and a sign and ignore what follows the number. A text that doesn't start
/// with a number, or a number out of range, is a failure and logs one line at LEVEL_ERROR. `endPosition`, if given,
/// receives the number of characters used; on failure it is unchanged. `base` is that of strtol: 16 accepts the prefix
/// 0x, and an invalid base is a failure.
///
/// Nothing in the library calls StoiS or StringToInt16Def: they complete the set, and only their tests call them.
namespace StringUtil {

/// True if `text` starts with a number of 32 bits, which is stored in `value`; otherwise `value` is unchanged.
bool StoiS(const std::string& text, std::int32_t& value, int base = 10, std::size_t* endPosition = nullptr);

/// True if `text` starts with a number of 64 bits; stores its low 32 bits, so that a number of more bits is no failure.
bool StollS(const std::string& text, std::int32_t& value, int base = 10, std::size_t* endPosition = nullptr);

/// The number, or `defaultValue` on failure and for a number outside -32768 to 32767; logs nothing for such a number if
/// 32 bits are enough for it.
std::int32_t StringToInt16Def(
    const std::string& text, std::int32_t defaultValue, int base = 10, std::size_t* endPosition = nullptr);

/// The low 32 bits of the number; `defaultValue` on failure.
std::int32_t StringToInt32Def(
    const std::string& text, std::int32_t defaultValue, int base = 10, std::size_t* endPosition = nullptr);

/// The result of StringToInt32Def, sign-extended: of the number and of `defaultValue` only the low 32 bits count.
std::int64_t StringToInt64Def(
    const std::string& text, std::int64_t defaultValue, int base = 10, std::size_t* endPosition = nullptr);

/// Converts like strtof, but always with a decimal point: the locale of the host must not change the numbers of rule
/// sets, node files and databases. A number too small for the type is out of range, too.
float StringToFloatDef(const std::string& text, float defaultValue);
/// Converts like strtod; otherwise as StringToFloatDef.
double StringToDoubleDef(const std::string& text, double defaultValue);

/// The result of StringToInt32Def in base 10, StringToFloatDef and StringToDoubleDef; nothing where they would log a line
/// and return the default. Logs nothing.
std::optional<std::int32_t> Int32Of(std::string_view text);
std::optional<float> FloatOf(const std::string& text);
std::optional<double> DoubleOf(const std::string& text);

/// The number as "%f" writes it, with six digits behind the point, and a point in every locale.
std::string FixedText(double number);

/// Splits at every character that `delimiters` contains and leaves out empty tokens. Without delimiters the whole text
/// is one token.
std::vector<std::string> Split(const std::string& text, const std::string& delimiters);

/// `text` without the spaces at both ends. Keeps other white space.
std::string TrimSP(const std::string& text);

} // namespace StringUtil

#endif
