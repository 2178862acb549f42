#ifndef ARBORIST_EVALUATION_SILENT_NUMBER_H
#define ARBORIST_EVALUATION_SILENT_NUMBER_H

#include <cstdint>
#include <optional>
#include <string_view>

/// Numbers that the conversions of StringUtil read without a line in the log. Nothing for texts that may leave one.
namespace SilentNumber {

/// What StringToInt32Def reads in base 10.
std::optional<std::int32_t> Int32Of(std::string_view text);

/// Whether StringToFloatDef and StringToDoubleDef read the text in silence: it is some digits with or without a point.
bool IsReal(std::string_view text);

} // namespace SilentNumber

#endif
