#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/lint.h"

namespace {

using diagnosis::lint::LintFolder;

std::vector<std::string> ErrorsIn(const std::string& folder)
{
    std::vector<std::string> found;
    for (const auto& finding : LintFolder(folder, {}).findings) {
        if (finding.check->severity == diagnosis::lint::Severity::ERROR) {
            found.push_back(
                finding.file + ":" + std::to_string(finding.line) + ": " + finding.check->id + " " + finding.message);
        }
    }
    return found;
}

TEST(LintOfExamples, FindsNothingThatCannotWork)
{
    EXPECT_THAT(ErrorsIn(ARBORIST_SOURCE_DIR "/examples/laptop/rules"), testing::IsEmpty());
    EXPECT_THAT(ErrorsIn(ARBORIST_SOURCE_DIR "/examples/linux-host/rules"), testing::IsEmpty());
}

} // namespace
