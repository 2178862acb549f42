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
#include "diagnosis/evidence/rule_set_memory.h"
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

const LintSample& SampleNamed(const std::string& start)
{
    static const std::vector<LintSample> samples = AllLintSamples();
    return *std::find_if(samples.begin(), samples.end(),
        [&](const LintSample& sample) { return sample.name.rfind(start, 0) == 0; });
}

TEST(RuleSetMemory, ChecksEqualFilesUnderOneTagOnceAndOthersAnew)
{
    const TempDir dir;
    SampleNamed("A303").CopyTo(dir, "bad");
    dir.MakeDir("other");
    for (const char* file : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        std::filesystem::copy_file(file, std::string("other/") + file);
    }
    diagnosis::RuleSetMemory memory;
    const diagnosis::rule_source::RuleSetPaths paths{"FaultTrees.xml", "FaultTreeRules.xml"};
    const auto known = memory.Check(paths, "Laptop");
    EXPECT_EQ(memory.Check(paths, "Laptop"), known);
    EXPECT_NE(memory.Check(paths, "Other"), known);
    std::filesystem::current_path("other");
    EXPECT_EQ(memory.Check(paths, "Laptop"), known);
    dir.Write("other/FaultTreeRules.xml", dir.Read("FaultTreeRules.xml") + "\n");
    EXPECT_NE(memory.Check(paths, "Laptop"), known);
}

TEST(RuleSetMemory, KnowsEveryRuleSetOfAFolderThatWasCheckedBefore)
{
    const TempDir dir;
    SampleNamed("A303").CopyTo(dir, "bad");
    for (const char* file : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        dir.Write(std::string("rules/") + file, dir.Read(file));
        dir.Write(std::string("rules/P_") + file, dir.Read(file));
    }
    dir.Write("rules/Q_FaultTrees.xml", "<F><One/><Two/></F>");
    dir.Write("rules/OtherFaultTrees.xml", "<F><Three/></F>"); // no file of a rule set
    diagnosis::RuleSetMemory memory;
    memory.CheckFolder("rules");
    EXPECT_EQ(memory.Count(), 4U);
    for (const std::string start : {"rules/", "rules/P_"}) {
        const auto known = memory.Check({start + "FaultTrees.xml", start + "FaultTreeRules.xml"}, "Laptop");
        diagnosis::WarningList told;
        known->AddTo(told);
        EXPECT_THAT(Texts(told.Told()), Contains(testing::HasSubstr("A303")));
    }
    memory.Check({"rules/Q_FaultTrees.xml", "rules/Q_FaultTreeRules.xml"}, "Two");
    EXPECT_EQ(memory.Count(), 4U);
    memory.CheckFolder("none");
    EXPECT_EQ(memory.Count(), 4U);
}

TEST(RuleSetMemory, RemembersNoMoreOfAFolderThanThereIsRoomFor)
{
    const TempDir dir;
    std::string tags;
    for (int i = 0; i < 70; ++i) {
        tags += "<T" + std::to_string(i) + "/>";
    }
    dir.Write("FaultTrees.xml", "<F>" + tags + "</F>");
    diagnosis::RuleSetMemory memory;
    memory.CheckFolder(".");
    EXPECT_EQ(memory.Count(), 64U);
}

TEST(RuleSetMemory, TellsEveryBundleOfARememberedRuleSet)
{
    const TempDir dir;
    SampleNamed("A303").CopyTo(dir, "bad");
    dir.Write("bundle.json", BUNDLE);
    diagnosis::DetectionOptions options;
    options.ruleSets = std::make_shared<diagnosis::RuleSetMemory>();
    const auto first = diagnosis::RunDetection({"b", dir.Path()}, options);
    const auto second = diagnosis::RunDetection({"b", dir.Path()}, options);
    EXPECT_THAT(Texts(first.warnings), Contains(testing::HasSubstr("A303")));
    EXPECT_EQ(Texts(second.warnings), Texts(first.warnings));
}

TEST(RuleSetMemory, HashesEqualFilesOnce)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", "<F><T/></F>");
    dir.Write("FaultTreeRules.xml", "<R/>");
    diagnosis::RuleSetMemory memory;
    memory.CheckFolder(".");
    const auto contents = diagnosis::rule_source::ReadRuleSetContents({"FaultTrees.xml", "FaultTreeRules.xml"});
    const std::string digest = DigestOf(contents);
    EXPECT_THAT(digest, testing::StartsWith("sha256:"));
    EXPECT_EQ(memory.Digest(contents), digest);
    EXPECT_EQ(memory.CountDigests(), 1U);
    dir.Write("other/FaultTrees.xml", "<F><T/></F>");
    dir.Write("other/FaultTreeRules.xml", "<R/>");
    EXPECT_EQ(memory.Digest(diagnosis::rule_source::ReadRuleSetContents(
                  {"other/FaultTrees.xml", "other/FaultTreeRules.xml"})), digest);
    EXPECT_EQ(memory.CountDigests(), 1U);
    EXPECT_EQ(memory.Digest(diagnosis::rule_source::ReadRuleSetContents({"FaultTrees.xml", "nowhere"})), "");
}

TEST(RuleSetMemory, HoldsTheRuleSetsOfAFolderWhateverBecomesOfTheFiles)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", "<F><T/></F>");
    dir.Write("FaultTreeRules.xml", "<R/>");
    diagnosis::RuleSetMemory memory;
    memory.CheckFolder(".");
    const std::string digest =
        DigestOf(diagnosis::rule_source::ReadRuleSetContents({"FaultTrees.xml", "FaultTreeRules.xml"}));
    std::filesystem::remove("FaultTreeRules.xml");
    const diagnosis::HeldRuleSet* const held = memory.FindHeld(".", "", "T");
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->digest, digest);
    EXPECT_NE(held->warnings, nullptr);
    EXPECT_NE(held->loaded, nullptr);
    EXPECT_EQ(memory.FindHeld(".", "P", "T"), nullptr);
    EXPECT_EQ(memory.FindHeld("other", "", "T"), nullptr);
    EXPECT_EQ(memory.FindHeld(".", "", "Other"), nullptr);
}

TEST(RuleSetMemory, HoldsNoRuleSetWithAFileThatCannotBeRead)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", "<F><T/></F>");
    diagnosis::RuleSetMemory memory;
    memory.CheckFolder(".");
    EXPECT_EQ(memory.FindHeld(".", "", "T"), nullptr);
}

TEST(RuleSetMemory, KeepsTheLastRuleSetAsLongAsNamesAndFilesAreTheSame)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", "<F><T/></F>");
    dir.Write("FaultTreeRules.xml", "<R/>");
    const auto read = [] { return diagnosis::rule_source::ReadRuleSetContents({"FaultTrees.xml", "FaultTreeRules.xml"}); };
    DetectInfo info;
    info.mRuleFileDir = ".";
    info.mTreeTag = "T";
    diagnosis::RuleSetMemory memory;
    EXPECT_EQ(memory.KeptOrLoad(info, read()), nullptr);
    memory.KeepLast();
    const auto first = memory.KeptOrLoad(info, read());
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(memory.KeptOrLoad(info, read()), first);
    info.mTreeTag = "Other";
    const auto second = memory.KeptOrLoad(info, read());
    EXPECT_NE(second, first);
    dir.Write("FaultTreeRules.xml", "<R> </R>");
    EXPECT_NE(memory.KeptOrLoad(info, read()), second);
    std::filesystem::remove("FaultTreeRules.xml");
    EXPECT_EQ(memory.KeptOrLoad(info, read()), nullptr);
}

TEST(RuleSetMemory, TellsRuleSetsWithOneByteOfDifferenceApart)
{
    const TempDir dir;
    diagnosis::RuleSetMemory memory;
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < 20; ++number) { // more than are kept
            dir.Write("t", "<F" + std::string(1, static_cast<char>('a' + number)) + "/>");
            dir.Write("r", "<R/>");
            const auto contents = diagnosis::rule_source::ReadRuleSetContents({"t", "r"});
            EXPECT_EQ(memory.Digest(contents), DigestOf(contents));
        }
    }
    EXPECT_EQ(memory.CountDigests(), 40U);
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
