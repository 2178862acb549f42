#include "diagnosis/cases/test_run.h"

#include <cstdlib>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/cases/difference_text.h"
#include "tests/support/full_disk.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using diagnosis::cases::DifferenceText;
using diagnosis::ExitStatus;
using diagnosis::cases::CaseOutcome;
using diagnosis::cases::FirstOtherAnswer;
using diagnosis::cases::RunTests;
using diagnosis::cases::TestOptions;
using diagnosis::cases::TestRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A rule set in "rules" with the tree "T" of the events HOT (a node file above a limit), DROPS (three events 1001 in
/// seven days), PIXELS (a code rule) and PANEL (a row of an external database).
class TestRunTest : public testing::Test {
protected:
    void SetUp() override { WriteRules("rules", "70"); }

    void WriteRules(const std::string& folder, const std::string& limit)
    {
        const auto hot = NodeRuleXml("hot", {NodeInfoXml("T", "/sys/temp"), ParamsXml({ParamXml("t", "T", "int")}),
            ConditionXml({SingleLogicXml(TestXml("gt", "t", limit))})});
        const auto drops = AlarmRuleXml("drops", {AlarmIdXml("1001", "1001", {TimeXml("duration", "7", "3")})});
        mDir.Write(folder + "/FaultTrees.xml",
            TreeXml("Tag").Version("1").Tree("T", Or({Basic("HOT"), Basic("DROPS"), Basic("PIXELS")})).Text());
        mDir.Write(folder + "/FaultTreeRules.xml", RuleXml("Tag").EventRule("HOT", {Single("hot")})
            .EventRule("DROPS", {Single("drops")}).EventRule("PIXELS", {Single("pixels")})
            .Rule(hot).Rule(drops).Rule(CodeRuleXml("pixels", "P", "{\"test\": 1}")).Repair("DROPS", {{"R", ""}}).Text());
    }

    void Write(const std::string& name, const std::string& members)
    {
        mDir.Write("rules/" + name, "{\"scene\": 1, \"now\": \"2024-05-20 12:00:00\", \"files\": {\"/sys/temp\": 60},"
            " \"answers\": {\"pixels\": false}, " + members + "}");
    }

    // Runs one case with these members and gives what differs, each in lines.
    std::vector<std::string> DifferencesOf(const std::string& members)
    {
        Write("a.test.json", "\"cases\": [{\"name\": \"a\", " + members + "}]");
        const TestRun run = RunTests({"rules"}, {});
        std::vector<std::string> texts;
        for (const auto& failure : run.failures) {
            texts.push_back(failure.message);
        }
        for (const CaseOutcome& outcome : run.cases) {
            texts.push_back(outcome.failure ? outcome.failure->message : "");
            for (const auto& difference : outcome.differences) {
                texts.back() += DifferenceText(difference, "");
            }
        }
        return texts;
    }

    TempDir mDir;
};

const std::string SOUND = R"("expect": {"causes": {"T": []}})";

TEST_F(TestRunTest, DataOfEveryKindReachesTheRules)
{
    EXPECT_THAT(DifferencesOf(SOUND), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(R"("files": {"/sys/temp": "71\n"}, "expect": {"causes": {"T": ["HOT"]}})"), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(R"("answers": {"pixels": true}, "expect": {"causes": {"T": ["PIXELS"]}})"), ElementsAre(""));
    const std::string drops = R"("events": [{"time": "2024-05-14 00:00:00", "event": 1001, "count": 3}], )";
    EXPECT_THAT(DifferencesOf(drops + R"("expect": {"causes": {"T": ["DROPS"]}})"), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(drops + R"("repairs": {"R": "-1d"}, )" + SOUND), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(drops + R"("scene": 2, )" + SOUND), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(drops + R"("now": "2024-05-30 12:00:00", )" + SOUND), ElementsAre(""));
}

TEST_F(TestRunTest, OnlyWhatDiffersIsTold)
{
    EXPECT_THAT(DifferencesOf(R"("files": {"/sys/temp": 80}, "expect": {"causes": {"T": ["DROPS", "HOT"]},
        "statuses": {"HOT": "FALSE", "PIXELS": "FALSE"}, "reasons": {"hot": "condition_not_met", "drops": "window_short"},
        "verdicts": {"T": "no_fault"}, "checks": {"T": {"decided": 2, "total": 3}}})"),
        ElementsAre("root causes of T\n"
                    "  - DROPS  (FALSE, rule drops: window_short)\n"
                    "verdict of T\n"
                    "  - no_fault\n"
                    "  + fault\n"
                    "checks of T that are decided\n"
                    "  - 2\n"
                    "  + 3\n"
                    "status of HOT\n"
                    "  - FALSE\n"
                    "  + TRUE  (rule hot: condition_met)\n"
                    "reason of hot\n"
                    "  - condition_not_met\n"
                    "  + condition_met\n"));
}

TEST_F(TestRunTest, CausesAreComparedInOrderOrAsASet)
{
    const std::string both = R"("files": {"/sys/temp": 80}, "answers": {"pixels": true}, "expect": {"causes": {"T": )";
    EXPECT_THAT(DifferencesOf(both + R"(["HOT", "PIXELS"]}})"), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(both + R"(["PIXELS", "HOT"]}})"),
        ElementsAre("order of the root causes of T\n  - PIXELS, HOT\n  + HOT, PIXELS\n"));
    EXPECT_THAT(DifferencesOf(both + R"({"anyOrder": ["PIXELS", "HOT", "HOT"]}}})"), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(both + R"({"anyOrder": ["HOT"]}}})"),
        ElementsAre("root causes of T\n  + PIXELS  (TRUE, rule pixels: runner_answered)\n"));
}

TEST_F(TestRunTest, OpenChecksAreToldWithAnUndecidedVerdict)
{
    EXPECT_THAT(DifferencesOf(R"("events": null, "files": {"/sys/temp": null}, "expect": {"verdicts": {"T": "no_fault"}, "checks": {"T": "decided"}})"),
        ElementsAre("verdict of T\n"
                    "  - no_fault\n"
                    "  + undecided  (open: HOT (node_unreadable), DROPS (log_unavailable))\n"
                    "checks of T\n"
                    "  - all decided\n"
                    "  + 1 of 3 decided  (open: HOT (node_unreadable), DROPS (log_unavailable))\n"));
    EXPECT_THAT(DifferencesOf(R"("events": null, "expect": {"verdicts": {"T": "undecided"}})"), ElementsAre(""));
}

TEST_F(TestRunTest, UnknownNamesAreDifferencesWithTheNearestName)
{
    EXPECT_THAT(DifferencesOf(R"("expect": {"causes": {"U": []}, "statuses": {"HOTT": "TRUE"}, "reasons": {"dops": "window_short"}})"),
        ElementsAre("root causes of U\n  - none\n  + no such tree\n"
                    "status of HOTT\n  - TRUE\n  + no such event; did you mean \"HOT\"?\n"
                    "reason of dops\n  - window_short\n  + no such rule or event was asked; did you mean \"drops\"?\n"));
}

TEST_F(TestRunTest, LinesOfTheLogAreAskedFor)
{
    EXPECT_THAT(DifferencesOf(R"("files": {"/sys/temp": 80}, "expect": {"log": ["check error true HOT:"], "noLog": ["check error true DROPS:"]})"),
        ElementsAre(""));
    EXPECT_THAT(DifferencesOf(R"("files": {"/sys/temp": 80}, "expect": {"log": ["true DROPS:"], "noLog": ["true HOT:"]})"),
        ElementsAre("log\n  - true DROPS:\n  + [[WARN] ]:FUNc:RuleEngine::RunRules: check error true HOT:\n"));
}

TEST_F(TestRunTest, ACaseThatCantBeRunSaysWhy)
{
    EXPECT_THAT(DifferencesOf(R"("answers": {"pixel": true}, )" + SOUND), ElementsAre("rules/a.test.json:1: no code rule "
        "has the name \"pixel\", which \"answers\" has; did you mean \"pixels\"?"));
    EXPECT_THAT(DifferencesOf(R"("tag": "Tags", )" + SOUND),
        ElementsAre(HasSubstr("no tree under the tag \"Tags\"; did you mean \"Tag\"?")));
    EXPECT_THAT(DifferencesOf(R"("databases": {"/d/x.db": {"t": {"columns": ["a", "a"], "rows": []}}}, )" + SOUND),
        ElementsAre("rules/a.test.json:1: the database \"/d/x.db\" can't be made: duplicate column name: a"));
}

TEST_F(TestRunTest, CodeRulesThatShareATextShareItsAnswer)
{
    mDir.Write("rules/FaultTreeRules.xml", RuleXml("Tag").EventRule("PIXELS", {Single("pixels"), Single("dots")})
        .Rule(CodeRuleXml("pixels", "P", "{\"test\": 1}")).Rule(CodeRuleXml("dots", "P", "{\"test\": 1}")).Text());
    EXPECT_THAT(DifferencesOf(R"("answers": {"dots": false}, )" + SOUND), ElementsAre(""));
    EXPECT_THAT(DifferencesOf(R"("answers": {"dots": true}, )" + SOUND),
        ElementsAre("rules/a.test.json:1: \"answers\" has two answers for one text: \"{\"test\": 1}\""));
}

TEST_F(TestRunTest, ACaseThatDoesNotFitOnTheDiskSaysSoAndLeavesNothing)
{
    setenv("TMPDIR", mDir.MakeDir("tmp").c_str(), 1);
    for (const auto& [members, problem] : {std::pair<std::string, std::string>(R"("events": [{"time": "-1d", "event": 1}])", "/log.db: "),
             {R"("events": [])", "/empty.db: "}, {R"("events": null, "repairs": {"R": "-1d"})", "/repair_record.db: "},
             {R"("events": null, "files": {"/sys/temp": ")" + std::string(9000, ' ') + "\"}", "/temp: can't be written"},
             {R"("events": null, "databases": {"/d/x.db": {"t": {"columns": ["a"], "rows": [["x"]]}}})",
                 "the database \"/d/x.db\" can't be made: "}}) {
        Write("a.test.json", "\"cases\": [{\"name\": \"a\", " + members + ", " + SOUND + "}]");
        std::set<std::string> failures;
        for (rlim_t bytes = 0; bytes < 36864; bytes += 1024) {
            const FullDisk disk(bytes);
            const TestRun run = RunTests({"rules"}, {});
            ASSERT_THAT(run.cases, SizeIs(1));
            failures.insert(run.cases[0].failure ? run.cases[0].failure->message : "");
            EXPECT_TRUE(std::filesystem::is_empty("tmp"));
        }
        EXPECT_THAT(failures, testing::Contains(HasSubstr(problem)));
        EXPECT_THAT(failures, testing::Contains("")) << problem;
    }
    unsetenv("TMPDIR");
}

TEST_F(TestRunTest, StatusesFollowTheTableOfTheCommand)
{
    EXPECT_EQ(RunTests({"rules"}, {}).Status(), ExitStatus::FAULT_FOUND);
    Write("a.test.json", "\"cases\": [{\"name\": \"good\", " + SOUND + "}]");
    EXPECT_EQ(RunTests({"rules"}, {}).Status(), ExitStatus::SUCCESS);
    Write("b.test.json", R"("cases": [{"name": "bad", "expect": {"causes": {"T": ["HOT"]}}}])");
    EXPECT_EQ(RunTests({"rules"}, {}).Status(), ExitStatus::FAULT_FOUND);
    Write("c.test.json", "\"cases\": [{\"name\": \"no such tag\", \"tag\": \"x\", " + SOUND + "}]");
    EXPECT_EQ(RunTests({"rules"}, {}).Status(), ExitStatus::RULE_SET);
    mDir.Write("rules/d.test.json", "{");
    EXPECT_EQ(RunTests({"rules"}, {}).Status(), ExitStatus::INPUT);
    EXPECT_EQ(RunTests({"nowhere"}, {}).Status(), ExitStatus::INPUT);
}

TEST_F(TestRunTest, FilesAreFoundBelowFoldersInOrderAndRunOnce)
{
    Write("b.test.json", SOUND);
    Write("a.test.json", SOUND);
    Write("more.json", SOUND);
    Write("below/c.test.json", R"("rules": "..", )" + SOUND);
    std::vector<std::string> names;
    TestOptions options;
    options.onCase = [&names](const CaseOutcome& outcome) { names.push_back(outcome.name); };
    const TestRun run = RunTests({"rules", "rules/../rules/a.test.json"}, options);
    EXPECT_THAT(names, ElementsAre("a", "b", "c"));
    EXPECT_EQ(run.Passed(), 3U);
    options.filter = "b";
    EXPECT_THAT(RunTests({"rules"}, options).cases, SizeIs(1));
}

TEST_F(TestRunTest, CasesNearARuleSetAreFoundBesideItWithoutFollowingLinksOrLookingIntoHiddenFolders)
{
    for (const char* file : {"p/rules/a.test.json", "p/b.test.json", "p/tests/deep/c.test.json", "p/.hidden/d.test.json",
             "p/notes.json", "e.test.json"}) {
        mDir.Write(file, "{}");
    }
    std::filesystem::create_directory_symlink(mDir.Path(), "p/link");
    const auto near = diagnosis::cases::FindCasesNear("p/rules");
    const std::string parent = std::filesystem::canonical("p").string();
    EXPECT_THAT(near.files, ElementsAre(parent + "/b.test.json", parent + "/rules/a.test.json", parent + "/tests/deep/c.test.json"));
    EXPECT_EQ(near.folder, parent);
    EXPECT_TRUE(near.isComplete);
    EXPECT_THAT(diagnosis::cases::FindCasesNear("none").files, testing::IsEmpty());
}

TEST_F(TestRunTest, CasesNearARuleSetAreLookedForInABoundedNumberOfPlaces)
{
    mDir.MakeDir("p/rules");
    mDir.MakeDir("p/z");
    for (int i = 0; i < 10; ++i) {
        mDir.Write("p/z/" + std::to_string(i), "");
    }
    mDir.Write("p/a.test.json", "{}");
    const auto near = diagnosis::cases::FindCasesNear("p/rules", 12);
    EXPECT_EQ(near.files.size(), 1U);
    EXPECT_FALSE(near.isComplete);
    EXPECT_TRUE(diagnosis::cases::FindCasesNear("p/rules", 13).isComplete);
}

TEST_F(TestRunTest, TheTagOfARuleSetWithSeveralMustBeNamed)
{
    mDir.Write("rules/FaultTrees.xml", "<FaultTrees version=\"1\"><A/><B/></FaultTrees>");
    EXPECT_THAT(DifferencesOf(SOUND), ElementsAre("rules/a.test.json:1: the rule set has 2 tags; name one of them in \"tag\""));
}

TEST_F(TestRunTest, AnotherRuleSetIsTakenForAllCases)
{
    Write("a.test.json", SOUND);
    WriteRules("strict", "50");
    TestOptions options;
    options.rules = mDir.Path("strict");
    EXPECT_EQ(RunTests({"rules"}, options).Passed(), 0U);
}

TEST_F(TestRunTest, AChangedRuleSetIsToldFromOneThatAnswersAlike)
{
    Write("a.test.json", "\"cases\": [{\"name\": \"bad\", \"expect\": {\"causes\": {\"T\": [\"DROPS\"]}}}, {\"name\": \"cold\", " + SOUND + "}]");
    WriteRules("same", "65");
    EXPECT_EQ(FirstOtherAnswer({"rules"}, "rules", "same"), std::nullopt);
    WriteRules("other", "50");
    EXPECT_EQ(FirstOtherAnswer({"rules"}, "rules", "other"), "rules/a.test.json: bad");
    WriteRules("broken", "70");
    mDir.Write("broken/FaultTrees.xml", "<");
    EXPECT_EQ(FirstOtherAnswer({"rules"}, "rules", "broken"), "rules/a.test.json: bad");
}

} // namespace
