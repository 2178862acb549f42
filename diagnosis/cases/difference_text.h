#ifndef ARBORIST_DIAGNOSIS_CASES_DIFFERENCE_TEXT_H
#define ARBORIST_DIAGNOSIS_CASES_DIFFERENCE_TEXT_H

#include <string>

#include "diagnosis/cases/comparison.h"

namespace diagnosis::cases {

/// A difference in lines with `indent` in front: what it is about, then "- " with what is missing and "+ " with what is
/// there instead.
std::string DifferenceText(const Difference& difference, const std::string& indent);

} // namespace diagnosis::cases

#endif
