#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_DATABASES_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_DATABASES_H

#include <optional>
#include <string>

#include "diagnosis/cases/test_case.h"
#include "diagnosis/problem.h"

namespace diagnosis::cases {

/// Writes the external databases of a case below the folder of its bundle, those inside archives as archives. `device`
/// is the root of the device in that folder. Uses `work` for the content of one archive after the other.
std::optional<Failure> WriteDatabases(
    const TestCase& testCase, const std::string& folder, const std::string& device, const std::string& work);

} // namespace diagnosis::cases

#endif
