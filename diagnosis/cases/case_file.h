#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_FILE_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_FILE_H

#include <string>
#include <vector>

#include "diagnosis/cases/test_case.h"
#include "diagnosis/problem.h"

namespace diagnosis::cases {

/// The end of the names of case files.
inline constexpr char CASE_FILE_END[] = ".test.json";

/// The cases of one file, or why it can't be used.
struct CaseFile {
    std::vector<TestCase> cases;
    /// "file:line:column: reason"; with a failure there are no cases.
    std::vector<Failure> failures;
};

/// Reads a case file strictly: unknown keys, wrong types and moments that don't exist are failures. docs/cases.md
/// describes the format, docs/case.schema.json is its schema.
CaseFile ReadCaseFile(const std::string& path);

/// The same for the text of a file; `path` is its name, whose folder has the rule set unless the text says otherwise.
CaseFile ReadCaseText(const std::string& path, const std::string& text);

} // namespace diagnosis::cases

#endif
