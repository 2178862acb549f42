#ifndef ARBORIST_DIAGNOSIS_LINT_READING_TIME_LIMITS_H
#define ARBORIST_DIAGNOSIS_LINT_READING_TIME_LIMITS_H

#include <cstdint>

#include "diagnosis/rule_source/element.h"
#include "diagnosis/rule_source/numbers.h"

namespace diagnosis::lint {

/// Days that a period of 0 means.
inline constexpr std::int32_t DEFAULT_PERIOD = 30;
/// The most days whose seconds fit into 32 bits.
inline constexpr std::int32_t LONGEST_PERIOD = 24855;

/// True if an attribute is a whole number and nothing else.
inline bool IsWholeNumber(rule_source::Attribute attribute)
{
    return rule_source::ReadWholeNumber(attribute.Value()).isWhole;
}

} // namespace diagnosis::lint

#endif
