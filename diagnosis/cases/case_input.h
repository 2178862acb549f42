#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_INPUT_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_INPUT_H

#include <json/value.h>

#include "diagnosis/cases/case_json.h"
#include "diagnosis/cases/test_case.h"

namespace diagnosis::cases {

/// Reads the device of a case with its data: everything but name and expectations.
void ReadInput(CaseObject& reader, const Json::Value& object, TestCase& testCase, CaseProblems& problems);

} // namespace diagnosis::cases

#endif
