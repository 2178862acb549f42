#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/capture/bundle_contents.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/evidence/rule_set_warnings.h"
#include "diagnosis/lint/registry.h"
#include "tests/diagnosis/lint/sample.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::BundleFinding;
using diagnosis::CodeOfMistakes;
using diagnosis::CodeWord;
using diagnosis::Remark;
using diagnosis::Warning;
using diagnosis::WarningCode;
using diagnosis::lint::AllChecks;
using diagnosis::lint::Check;
using diagnosis::lint::CheckClass;
using diagnosis::lint::Severity;
using testing::Contains;

std::string TextOf(const std::string& code, const Remark& remark)
{
    return code + " " + remark.id + " " + remark.rule + "|" + remark.event + " " + diagnosis::PlacedMessage(remark);
}

/// The problems of the rule set by their texts. Data that a detection lacks is no matter of the rule set.
class RuleSetProblems {
public:
    void Add(const std::string& code, Remark remark)
    {
        // A statement that fails is told in the words of the run.
        remark.message = mIsWithoutSql && code == "sql_failed" ? "" : remark.message;
        if (!remark.id.empty() || code == "no_rules") {
            mTexts.push_back(TextOf(code, remark));
        }
    }
    std::vector<std::string> Texts()
    {
        std::sort(mTexts.begin(), mTexts.end());
        return mTexts;
    }
    static RuleSetProblems WithoutWordsOfSql()
    {
        RuleSetProblems problems;
        problems.mIsWithoutSql = true;
        return problems;
    }

private:
    bool mIsWithoutSql = false;
    std::vector<std::string> mTexts;
};

std::vector<std::string> Texts(const std::vector<Warning>& warnings, RuleSetProblems problems = {})
{
    for (const Warning& warning : warnings) {
        problems.Add(CodeWord(warning.code), warning);
    }
    return problems.Texts();
}

constexpr char BUNDLE[] = R"({"detectScene": 1, "treeTag": "Laptop", "ruleFileDir": ".", "now": 1700000000, "tz": "UTC0"})";

/// A bundle with the rule set of a sample.
class WarningsOfSample : public testing::TestWithParam<LintSample> {
protected:
    void SetUp() override
    {
        GetParam().CopyTo(mDir, "bad");
        mDir.Write("bundle.json", BUNDLE);
        mDetection = diagnosis::RunDetection(mBundle, {});
    }

    TempDir mDir;
    LogCapture mLog;
    diagnosis::BundlePath mBundle{"b", mDir.Path()};
    diagnosis::DetectionReport mDetection;
};

TEST_P(WarningsOfSample, AreToldByADetectionWhereTheyAreErrorsOrChangeInSilenceWhatIsRead)
{
    const Check& check = *diagnosis::lint::FindCheck(GetParam().id);
    const bool isTold = std::any_of(mDetection.warnings.begin(), mDetection.warnings.end(), [&](const Warning& warning) {
        return warning.id == check.id && !warning.file.empty() && !warning.message.empty();
    });
    const bool isFailure = mDetection.failure && mDetection.failure->code != diagnosis::FailureCode::BAD_PATTERN;
    EXPECT_EQ(isTold, CodeOfMistakes(check).has_value() && !isFailure);
}

TEST_P(WarningsOfSample, AreTheSameInADetectionAndInACheckOfTheBundle)
{
    const auto contents = diagnosis::LookIntoBundle(mBundle, {}, diagnosis::BundleLook::FOR_MISTAKES);
    auto verified = RuleSetProblems::WithoutWordsOfSql();
    for (const BundleFinding& finding : diagnosis::CheckBundle(contents)) {
        verified.Add(finding.code, finding.what);
    }
    EXPECT_EQ(verified.Texts(), Texts(mDetection.warnings, RuleSetProblems::WithoutWordsOfSql()));
    ASSERT_EQ(contents.ruleSetFailure.has_value(), mDetection.failure.has_value());
    EXPECT_EQ(contents.ruleSetFailure ? contents.ruleSetFailure->message : "",
        mDetection.failure ? mDetection.failure->message : "");
}

INSTANTIATE_TEST_SUITE_P(All, WarningsOfSample, testing::ValuesIn(AllLintSamples()), CaseName());

bool NeedsData(const Check& check)
{
    return check.kind == CheckClass::DEVICE || check.kind == CheckClass::HOST;
}

TEST(RuleSetWarnings, AreAllErrorsAndNothingThatNeedsDataOfADevice)
{
    for (const Check* check : AllChecks()) {
        EXPECT_TRUE(check->severity != Severity::ERROR || CodeOfMistakes(*check)) << check->id;
        EXPECT_TRUE(!NeedsData(*check) || !CodeOfMistakes(*check)) << check->id;
    }
}

// Also of the warning that counts those beyond a hundred, which has no check.
TEST(RuleSetWarnings, AreTheFaultOfTheRuleSetByTheirCode)
{
    for (const Check* check : AllChecks()) {
        const auto code = CodeOfMistakes(*check);
        EXPECT_TRUE(!code || diagnosis::StrictStatus(*code) == diagnosis::ExitStatus::RULE_SET) << check->id;
    }
    EXPECT_EQ(diagnosis::StrictStatus(WarningCode::EVENT_LOG_MISSING), diagnosis::ExitStatus::INPUT);
}

// The page names the checks of each code in parentheses.
TEST(RuleSetWarnings, HaveTheCodesThatThePageLists)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/command.md", std::ios::binary);
    std::map<std::string, std::string> listed;
    for (std::string line; std::getline(file, line);) {
        const std::regex id("A[0-9]{3}");
        for (std::sregex_iterator found(line.begin(), line.end(), id), end; line.rfind("| `", 0) == 0 && found != end;
             ++found) {
            listed[found->str()] = line.substr(3, line.find('`', 3) - 3);
        }
    }
    std::map<std::string, std::string> expected;
    for (const Check* check : AllChecks()) {
        if (const auto code = CodeOfMistakes(*check)) {
            expected[check->id] = CodeWord(*code);
        }
    }
    EXPECT_EQ(listed, expected);
}

TEST(RuleSetWarnings, OfOneKindAreCountedBeyondAHundred)
{
    const TempDir dir;
    SampleNamed("A303").CopyTo(dir, "bad");
    std::string rules = dir.Read("FaultTreeRules.xml");
    const std::string tag = "<EventRules>\n    <Laptop>";
    ASSERT_NE(rules.find(tag), std::string::npos);
    std::string entries;
    for (int number = 0; number < 250; ++number) {
        entries += "<Event a" + std::to_string(number) + "=\"1\"><ID>F" + std::to_string(number) + "</ID></Event>";
    }
    dir.Write("FaultTreeRules.xml", rules.insert(rules.find(tag) + tag.size(), entries));
    dir.Write("bundle.json", BUNDLE);
    const auto warnings = diagnosis::RunDetection({"b", dir.Path()}, {}).warnings;
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(), [](const Warning& one) { return one.id == "A104"; }), 100);
    EXPECT_TRUE(std::any_of(warnings.begin(), warnings.end(), [](const Warning& one) {
        return one.code == WarningCode::UNKNOWN_NAME && one.message == "and 150 more of this kind";
    }));
}

TEST(RuleSetWarnings, AreSuppressedByTheCommentsThatLintReads)
{
    const TempDir dir;
    SampleNamed("A303").CopyTo(dir, "bad");
    std::string rules = dir.Read("FaultTreeRules.xml");
    dir.Write("FaultTreeRules.xml", rules.insert(rules.find("<EventRules>"), "<!-- arborist-disable A303: meant -->"));
    dir.Write("bundle.json", BUNDLE);
    for (const Warning& warning : diagnosis::RunDetection({"b", dir.Path()}, {}).warnings) {
        EXPECT_NE(warning.id, "A303");
    }
}

} // namespace
