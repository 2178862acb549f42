#ifndef ARBORIST_EVALUATION_SILENT_NUMBER_H
#define ARBORIST_EVALUATION_SILENT_NUMBER_H

#include <cstdint>
#include <optional>
#include <string_view>

/// Reads numbers that the conversions of StringUtil read without logging. Returns nothing for texts that may log a
/// line.
namespace SilentNumber {

/// The result of StringToInt32Def in base 10.
std::optional<std::int32_t> Int32Of(std::string_view text);

/// True if StringToFloatDef and StringToDoubleDef read the text without logging: it has only digits and at most one
/// point.
bool IsReal(std::string_view text);

} // namespace SilentNumber

#endif
