#include <algorithm>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/fixes.h"
#include "diagnosis/lint/lint.h"
#include "tests/diagnosis/lint/sample.h"
#include "tests/diagnosis/rule_source/model_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::lint::FileFix;
using diagnosis::lint::Finding;
using diagnosis::lint::FixesOf;
using diagnosis::lint::LintFolder;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(LintFixes, ChangeNothingThatTheEngineReadsOfAnySampleUnlessTheyAreUnsafe)
{
    std::size_t mended = 0;
    for (const LintSample& sample : AllLintSamples()) {
        for (const char* which : {"bad", "good"}) {
            const TempDir dir;
            const LogCapture log;
            sample.CopyTo(dir, which);
            const std::string before = EngineModelText(dir.Path(), "Laptop");
            for (const FileFix& fix : FixesOf(LintFolder(dir.Path(), {}).findings, false)) {
                EXPECT_EQ(WriteFix(fix), std::nullopt);
                ++mended;
            }
            EXPECT_EQ(EngineModelText(dir.Path(), "Laptop"), before) << sample.folder << " " << which;
        }
    }
    EXPECT_GT(mended, 0U);
}

TEST(LintFixes, LeaveNothingToMendBehind)
{
    for (const LintSample& sample : AllLintSamples()) {
        const TempDir dir;
        const LogCapture log;
        sample.CopyTo(dir, "bad");
        for (const FileFix& fix : FixesOf(LintFolder(dir.Path(), {}).findings, true)) {
            ASSERT_EQ(WriteFix(fix), std::nullopt);
        }
        EXPECT_THAT(FixesOf(LintFolder(dir.Path(), {}).findings, true), IsEmpty()) << sample.folder;
    }
}

// Whether the bad sample of the folder still has its finding after all fixes.
bool IsFoundAfterFixes(const LintSample& sample)
{
    const TempDir dir;
    const LogCapture log;
    sample.CopyTo(dir, "bad");
    for (const FileFix& fix : FixesOf(LintFolder(dir.Path(), {}).findings, true)) {
        EXPECT_EQ(WriteFix(fix), std::nullopt);
    }
    const auto findings = LintFolder(dir.Path(), {}).findings;
    return std::any_of(findings.begin(), findings.end(), [&](const Finding& left) { return left.check->id == sample.id; });
}

TEST(LintFixes, PutTheNearNameInThePlaceOfAnUnknownOne)
{
    std::set<std::string> mended;
    for (const LintSample& sample : AllLintSamples()) {
        if (!IsFoundAfterFixes(sample)) {
            mended.insert(std::filesystem::path(sample.folder).filename().string());
        }
    }
    EXPECT_THAT(mended, testing::IsSupersetOf({"A102-tag-in-lower-case", "A104-attribute-misspelt",
        "A206-event-word-in-lower-case", "A303-rule-name-misspelt", "A426-word-gte", "A503-misspelt-type",
        "A613-type-of-a-query-misspelt", "A614-common-part-misspelt", "A623-databases-misspelt", "A708-result-misspelt",
        "A712-node-for-an-unknown-key"}));
}

Finding Of(const std::string& path, diagnosis::lint::Edit edit)
{
    Finding finding;
    finding.file = path;
    edit.file = path;
    finding.edits.push_back(std::move(edit));
    return finding;
}

TEST(LintFixes, TakeTheFirstOfEditsThatOverlap)
{
    const TempDir dir;
    const std::string path = dir.Write("a.xml", "<a b=\"1\" c=\"2\"/>");
    const auto fixes = FixesOf({Of(path, {8, 6, " c=\"2\"", "", true}), Of(path, {2, 12, " b=\"1\" c=\"2\"", "", true}),
                                   Of(path, {2, 6, " b=\"1\"", "", true})}, false);
    ASSERT_EQ(fixes.size(), 1U);
    EXPECT_EQ(fixes[0].after, "<a/>");
}

TEST(LintFixes, LeaveAChangedFileAndOneThatWouldBreakAlone)
{
    const TempDir dir;
    const std::string path = dir.Write("a.xml", "<a b=\"1\"/>");
    EXPECT_THAT(FixesOf({Of(path, {2, 6, " c=\"1\"", "", true})}, false), IsEmpty());
    EXPECT_THAT(FixesOf({Of(path, {2, 60, " b=\"1\"", "", true})}, false), IsEmpty());
    EXPECT_THAT(FixesOf({Of(path, {0, 1, "<", "", true})}, false), IsEmpty());
    EXPECT_THAT(FixesOf({Of(path, {2, 6, " b=\"1\"", "", false})}, false), IsEmpty());
    EXPECT_EQ(FixesOf({Of(path, {2, 6, " b=\"1\"", "", false})}, true).size(), 1U);
}

TEST(LintFixes, TellChangesThatAreFarApartInHunksOfTheirOwn)
{
    const TempDir dir;
    const std::string path = dir.Write("a.xml", "<a>\n<b c=''/>\n1\n2\n3\n4\n5\n6\n7\n<d e=''>\n</d>\n</a>");
    const auto fixes = FixesOf({Of(path, {6, 5, " c=''", "", true}), Of(path, {30, 5, " e=''", "", true})}, false);
    ASSERT_EQ(fixes.size(), 1U);
    EXPECT_THAT(DiffOf(fixes[0]), HasSubstr("\n@@ -1,5 +1,5 @@\n <a>\n-<b c=''/>\n+<b/>\n 1\n 2\n 3\n"
                                            "@@ -7,6 +7,6 @@\n 5\n 6\n 7\n-<d e=''>\n+<d>\n </d>\n </a>\n"
                                            "\\ No newline at end of file\n"));
}

} // namespace
