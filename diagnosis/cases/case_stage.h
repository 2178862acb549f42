#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_STAGE_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_STAGE_H

#include <cstddef>
#include <optional>
#include <string>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/cases/test_case.h"
#include "diagnosis/problem.h"
#include "diagnosis/scratch/scratch.h"

namespace diagnosis::cases {

/// Builds bundles from cases, one at a time, in one scratch folder. Nothing that it writes waits for the disk.
class CaseStage {
public:
    /// Builds the bundle of a case in place of the one before. `description` is the content of its bundle.json. Sets
    /// `folder`; returns the failure, if any.
    std::optional<Failure> Build(const TestCase& testCase, const Bundle& description, std::string& folder);

private:
    std::optional<Failure> WriteEventLog(const TestCase& testCase, const std::string& path);
    std::optional<Failure> WriteFiles(const TestCase& testCase, const std::string& folder);

    Scratch mScratch;
    /// A log without events, to which most cases link.
    std::string mEmptyLog;
};

} // namespace diagnosis::cases

#endif
