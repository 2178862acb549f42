#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_NUMBERS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_NUMBERS_H

#include <cstdint>
#include <string_view>

namespace diagnosis::rule_source {

/// A text as the engine reads whole numbers of event ids and of the types "int" and "long".
struct WholeNumber {
    /// The value that the engine uses: 0 for a text that begins with no number, the low 32 bits of a longer one.
    std::int32_t value = 0;
    /// True if the text begins with a number that can be read.
    bool isNumber = false;
    /// True if nothing follows the number.
    bool isWhole = false;
    /// True if the number has more than 32 bits.
    bool isCut = false;
};

WholeNumber ReadWholeNumber(std::string_view text);

/// Reads a text that is only a number, with or without fraction and exponent, with a decimal point in every locale.
/// False for any other text; `number` is then unchanged.
bool ReadDecimalNumber(std::string_view text, double& number);
bool IsDecimalNumber(std::string_view text);

} // namespace diagnosis::rule_source

#endif
