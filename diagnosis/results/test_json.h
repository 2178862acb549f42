#ifndef ARBORIST_DIAGNOSIS_RESULTS_TEST_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_TEST_JSON_H

#include <string>

#include "diagnosis/cases/test_run.h"

namespace diagnosis {

/// The outcome of the tests of rule sets as one line of JSON, schema "arborist.test.1", without the line end. `isOk` is
/// the outcome as the exit status has it: false also for unreviewed cases under --require-reviewed and for too low a
/// coverage.
std::string TestJson(const cases::TestRun& run, bool isOk);

/// The same in JUnit's XML: a suite for each case file, with a case for each test.
std::string TestJunit(const cases::TestRun& run);

} // namespace diagnosis

#endif
