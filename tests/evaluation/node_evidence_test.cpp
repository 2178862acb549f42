#include <gmock/gmock.h>

#include "tests/evaluation/node_rule_fixture.h"
#include "tests/support/evidence_lines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Evidence::Reason;

using NodeEvidenceTest = NodeRuleFixture;

TEST_F(NodeEvidenceTest, FilesFormulaAndComparisonsAreNoted)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "10");
    Node("b", "none");
    AddParam("1", "a", "int");
    AddParam("2", "r", "double");
    Express("a - 3 - 2", "r");
    Conditions({MultipleTest({Item("2", "lt", "9.5"), Item("1", "lt", "9"), Item("3", "eq", "1")})});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(EvidenceLines(record),
                ElementsAre("node a a = '10'", "node b none unreadable ''",
                            "formula r = a - 3 - 2 as a - (3 - 2) -> 9.000000",
                            "compare 2 r double '9.000000' lt '9.5' holds", "compare 1 a int '10' lt '9' fails",
                            "compare 3   '' eq '1' fails", "note [unknown_name]"));
}

TEST_F(NodeEvidenceTest, AMissingNodeIsNotedAlsoWhenTheConditionIsMet)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "10");
    Node("b", "none");
    AddParam("1", "a", "int");
    AddParam("2", "b", "");
    Conditions({SingleTest("eq", "10")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::NODE_UNREADABLE));
    record = {};
    Conditions({SingleTest("eq", "11")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
    EXPECT_THAT(record.notes, IsEmpty()) << "what decided is told once";
}

// The quotient is 0 whatever the condition makes of it.
TEST_F(NodeEvidenceTest, DivisionByZeroIsNotedWhetherTheConditionIsMetOrNot)
{
    Evidence::Rule record;
    NodeFile("errors", "7");
    NodeFile("packets", "0");
    AddParam("1", "errors", "");
    AddParam("2", "packets", "");
    const auto share = AddParam("3", "share", "double");
    Express("100 * errors / packets", "share");
    for (const auto& [limit, answer] : {std::pair("5", false), std::pair("-1", true)}) {
        record = {};
        mEngine.SetRecord(&record);
        Conditions({SingleTest("gt", limit)});
        EXPECT_EQ(Ask(), answer);
        EXPECT_EQ(share->value, "0.000000");
        EXPECT_THAT(record.notes, ElementsAre(Reason::DIVISION_BY_ZERO));
    }
    mDir.Write("packets", "4");
    record = {};
    mEngine.SetRecord(&record);
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, IsEmpty());
}

TEST_F(NodeEvidenceTest, ExpressionOfBlanksIsNoted)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Express("  ", "a");
    Conditions({SingleTest("eq", "5")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::BAD_FORMULA));
}

TEST_F(NodeEvidenceTest, AnswersAndLogAreTheSameWithAndWithoutARecord)
{
    NodeFile("a", "x");
    AddParam("1", "a", "int");
    AddParam("2", "r", "double");
    Express("a / (3", "r");
    Conditions({SingleTest("eq", "y")});
    const bool before = Ask();
    const auto lines = mLog.Lines();
    mLog.Clear();
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    EXPECT_EQ(Ask(), before);
    EXPECT_EQ(mLog.Lines(), lines);
    EXPECT_FALSE(lines.empty());
}

TEST_F(NodeEvidenceTest, WithoutAParameterOfAnyTypeASingleConditionComparesNothing)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("mode", "on");
    AddParam("1", "mode", "");
    Conditions({SingleTest("eq", "on")});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::UNKNOWN_NAME));
    record.notes.clear();
    Conditions({MultipleTest({Item("1", "eq", "on")})});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::UNKNOWN_NAME)) << "of an item, too";
    mEngine.SetRecord(nullptr);
}

TEST_F(NodeEvidenceTest, ValuesThatAreNoNumbersAreNotedOnce)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "x");
    NodeFile("b", "y");
    AddParam("1", "a", "");
    AddParam("2", "b", "");
    AddParam("3", "r", "double");
    Express("a + b", "r");
    Conditions({SingleTest("eq", "0")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::BAD_NUMBER));
    mEngine.SetRecord(nullptr);
}

} // namespace
