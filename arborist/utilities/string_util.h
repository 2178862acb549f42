#ifndef ARBORIST_UTILITIES_STRING_UTIL_H
#define ARBORIST_UTILITIES_STRING_UTIL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Text to numbers, with a default in place of failure, and two text helpers. Free of state; nothing raises.
///
/// In all conversions leading white space and a sign are allowed, and what follows the number doesn't matter: a text
/// that starts with a number converts. A text that doesn't, or a number out of range, is a failure and logs one line
/// at LEVEL_ERROR. `endPosition`, when given, receives the number of characters used and stays as it is on failure.
/// `base` is that of strtol: 16 accepts the prefix 0x, and a base that doesn't exist is a failure.
namespace StringUtil {

/// Answers whether `text` starts with a number of 32 bits; `value` stays as it is when it does not.
bool StoiS(const std::string& text, std::int32_t& value, int base = 10, std::size_t* endPosition = nullptr);

/// Answers whether `text` starts with a number of 64 bits, and stores its low 32 bits: a greater number is no failure.
bool StollS(const std::string& text, std::int32_t& value, int base = 10, std::size_t* endPosition = nullptr);

/// The number, or `defaultValue` on failure and for a number outside -32768 to 32767; up to 32 bits that isn't logged.
std::int32_t StringToInt16Def(
    const std::string& text, std::int32_t defaultValue, int base = 10, std::size_t* endPosition = nullptr);

/// The low 32 bits of the number, or `defaultValue` on failure.
std::int32_t StringToInt32Def(
    const std::string& text, std::int32_t defaultValue, int base = 10, std::size_t* endPosition = nullptr);

/// As StringToInt32Def, sign-extended: neither the number nor `defaultValue` reaches beyond its low 32 bits.
std::int64_t StringToInt64Def(
    const std::string& text, std::int64_t defaultValue, int base = 10, std::size_t* endPosition = nullptr);

/// By strtof, but always with a point: the numbers of rule sets, node files and databases don't change with the locale
/// of the host. A number too small for the type is out of range, too.
float StringToFloatDef(const std::string& text, float defaultValue);
/// By strtod, as StringToFloatDef.
double StringToDoubleDef(const std::string& text, double defaultValue);

/// The number as "%f" writes it, six digits behind the point, and with a point whatever the locale.
std::string FixedText(double number);

/// The tokens between the characters of the set `delimiters`, none of them empty. Without delimiters the whole text
/// is one token.
std::vector<std::string> Split(const std::string& text, const std::string& delimiters);

/// `text` without the space characters at both ends. Other white space stays.
std::string TrimSP(const std::string& text);

} // namespace StringUtil

#endif
