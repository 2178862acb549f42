#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/lint.h"

namespace {

using diagnosis::lint::LintFolder;

std::vector<std::string> FindingsIn(const std::string& folder)
{
    std::vector<std::string> found;
    for (const auto& finding : LintFolder(folder, {}).findings) {
        found.push_back(
            finding.file + ":" + std::to_string(finding.line) + ": " + finding.check->id + " " + finding.message);
    }
    return found;
}

// Comments in the files suppress, with a reason, what is meant.
TEST(LintOfExamples, FindsNothing)
{
    EXPECT_THAT(FindingsIn(ARBORIST_SOURCE_DIR "/examples/laptop/rules"), testing::IsEmpty());
    EXPECT_THAT(FindingsIn(ARBORIST_SOURCE_DIR "/examples/linux-host/rules"), testing::IsEmpty());
}

} // namespace
