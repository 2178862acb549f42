#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_EXPECTATIONS_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_EXPECTATIONS_H

#include <json/value.h>

#include "diagnosis/cases/case_json.h"
#include "diagnosis/cases/test_case.h"

namespace diagnosis::cases {

/// Reads the member "expect" of a case. A case that expects nothing is a problem: it would always pass.
void ReadExpectations(CaseObject& reader, Expectations& expected, CaseProblems& problems);

} // namespace diagnosis::cases

#endif
