#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class VerdictCommandTest : public testing::Test {
protected:
    // Three trees: a fault, an answer, and one with an open check.
    void SetUp() override
    {
        WriteHotBundle(mDir, "b");
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("3").Tree("HOT_TREE", Or({Basic("HOT")}))
            .Tree("HOST_TREE", Or({Intermediate("G", And({Basic("HOT"), Basic("HOST", {"", "", "", "2"})}))}))
            .Tree("OPEN_TREE", And({Basic("HOT"), Basic("NOBODY")})).Text());
    }

    static int StatusOf(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"detect", "b"});
        return RunArborist(arguments).status;
    }

    TempDir mDir;
};

TEST_F(VerdictCommandTest, TreesSayWhatTheyRestOnAndTheLastLineCountsThem)
{
    const std::string out = RunArborist({"detect", "b"}).out;
    EXPECT_THAT(out, AllOf(HasSubstr("  HOST_TREE (version 3): no fault\n"),
        HasSubstr("  OPEN_TREE (version 3): no fault, UNDECIDED: 1 of 2 checks open (1 not_checked)\n"
                  "    open: NOBODY: not_checked, no_event_rule\n"),
        EndsWith("\n  3 trees: 1 fault, 1 no fault, 1 undecided\n")));
}

TEST_F(VerdictCommandTest, NoViewLeavesOutWhatIsOpen)
{
    EXPECT_THAT(RunArborist({"explain", "--brief", "b"}).out,
        HasSubstr("  OPEN_TREE: no fault, UNDECIDED: 1 of 2 checks open (1 not_checked)\n    open: NOBODY"));
    EXPECT_THAT(RunArborist({"explain", "--event", "HOT", "b"}).out, HasSubstr("open: NOBODY"));
    EXPECT_THAT(RunArborist({"explain", "--cause", "NOBODY", "b"}).out,
        AllOf(HasSubstr("OPEN_TREE (version"), HasSubstr("no fault, UNDECIDED: 1 of 2 checks open"),
            HasSubstr("open: NOBODY"), HasSubstr("nothing in any tree fits"), HasSubstr("\n  3 trees: ")));
    EXPECT_THAT(RunArborist({"explain", "--brief", "--json", "b"}).out, HasSubstr(R"("open": [{"event": "NOBODY")"));
    EXPECT_THAT(RunArborist({"explain", "--event", "HOT", "--json", "b"}).out,
        HasSubstr(R"("open": [{"event": "NOBODY")"));
    mDir.Write("list", "b\n");
    EXPECT_THAT(RunArborist({"detect", "--batch", "list"}).out,
        AllOf(HasSubstr(R"("verdict": "undecided", "complete": false, "checks": {"total": 2, "decided": 1, )"),
            HasSubstr(R"("open": [{"event": "NOBODY", "rule": "", "check": "not_checked", "reason": "no_event_rule", )"
                      R"("detail": "", "restsOnDefault": false}], "possibleCauses": [{"id": "HOT", "cutSet": )"
                      R"(["OPEN_TREE/HOT", "OPEN_TREE/NOBODY"]}], "possibleCausesTruncated": false)")));
}

TEST_F(VerdictCommandTest, ThePageIsGreenForAnAnswerAlone)
{
    const std::string page = RunArborist({"report", "b"}).out;
    EXPECT_THAT(page, AllOf(HasSubstr("<h1>Faults in 1 of 3 trees, 1 undecided</h1>"),
        HasSubstr("<li class=\"sound\"><a class=\"id\" href=\"#tree-2\">"),
        HasSubstr("<li class=\"undecided\"><a class=\"id\" href=\"#tree-3\">"),
        HasSubstr("<span class=\"badge undecided\">no fault, UNDECIDED"), HasSubstr("<h3>What is open</h3>")));
}

TEST_F(VerdictCommandTest, AnUndecidedTreeIsAStatusOfItsOwnThatCountsLeast)
{
    EXPECT_EQ(StatusOf({}), 0);
    EXPECT_EQ(StatusOf({"--fail-on-undecided"}), 6);
    EXPECT_EQ(StatusOf({"--strict"}), 6);
    EXPECT_EQ(StatusOf({"--fail-on-undecided", "--fail-on-fault"}), 1);
    EXPECT_EQ(StatusOf({"nothing", "--fail-on-undecided"}), 4);
    mDir.Write("list", "b\n");
    EXPECT_EQ(RunArborist({"detect", "--batch", "list", "--fail-on-undecided"}).status, 6);
    EXPECT_THAT(RunArborist({"detect", "--batch", "list", "--fail-on-undecided"}).err,
        Not(HasSubstr("1 not diagnosed")));
}

TEST_F(VerdictCommandTest, StrictTakesACheckThatIsAnErrorForAFaultOfTheRuleSet)
{
    mDir.Write("b/temperature", "warm\n");
    EXPECT_EQ(StatusOf({}), 0);
    EXPECT_EQ(StatusOf({"--strict"}), 3);
}

} // namespace
