#include "arborist/evaluation/command_rule_engine.h"

#include <gmock/gmock.h>

#include "tests/evaluation/command_rules.h"
#include "tests/support/evidence_lines.h"

namespace {

using Evidence::Reason;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// What command rules write into their records.
class CommandEvidenceTest : public CommandRuleEngineTest {};

TEST_F(CommandEvidenceTest, HowManyHitsThereAreAndMustBeIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Refer("countDB", "2", {1, 30, 40});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "hits"), ElementsAre("hits 2 of 3 Copies needed 2"));
    mRule->referenceDefDb->type = "singleDB";
    mTable->SetCopyDbFileList({mDir.Path("copy0.db")});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "hits"), ElementsAre("hits 0 of 1 Copies needed 1"));
}

TEST_F(CommandEvidenceTest, WhyThereIsNoCopyIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Refer("countDB", "2", {});
    mTable->SetDbName(".*x");
    mTable->SetDbPathList(TableBeanOf("", {"/one", "", "/two"}, "")->GetDbPathList());
    mTable->SetNoCopy(Evidence::NoCopy::FOLDER_MISSING, "");
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre("missing folder_missing '.*x' /one, /two"));
    mTable->SetNoCopy(Evidence::NoCopy::NO_MATCH, "/two");
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre("missing no_match '.*x' /two"));
    Refer("countDB", "2", {5});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre()) << "there is a copy, whatever was told before";
}

TEST_F(CommandEvidenceTest, TheNameThatLeadsNowhereIsNoted)
{
    mEngine.SetRecord(&mRecord);
    mRule->commonPartName = "None";
    Fires();
    EXPECT_EQ(mRecord.badName, "None");
    mRule->commonPartName = "Jank";
    mRule->analysisMethod.type = "sql";
    Fires();
    EXPECT_EQ(mRecord.badName, "sql");
    mRule->analysisMethod.type = "SQL";
    Refer("singleDB", "", {30});
    mRule->referenceDefDb->defDBName = "Unknown";
    Fires();
    EXPECT_EQ(mRecord.badName, "Unknown");
    EXPECT_THAT(EvidenceLines(mRecord, "query"), IsEmpty());
}

TEST_F(CommandEvidenceTest, StatementValuesAndComparisonsAreNoted)
{
    mEngine.SetRecord(&mRecord);
    Fires({Single("gt", "n", "limit", "dynamic")});
    EXPECT_THAT(EvidenceLines(mRecord), ElementsAre(testing::StartsWith("start 1697408000 "),
        "query " + mDerived + " rows 1: select n, s from Jank where occurrence_time >1697408000",
        "parameter n n int '5' -> '5'", "parameter s s string 'x' -> 'x'",
        "compare n n int '5' gt '4' from dynamic limit holds"));
    mRecord = {};
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("nowhere"));
    Fires({Multiple({{"gt", "n", "9"}})});
    EXPECT_THAT(EvidenceLines(mRecord), ElementsAre(testing::StartsWith("start 1697408000 "),
        HasSubstr(" not opened rows 0: select n"),
        "compare n n int '5' gt '9' fails"));
}

// The row in front of the failure decides the rule, and yet nobody knows what the others hold.
TEST_F(CommandEvidenceTest, StatementThatBreaksOffBehindItsFirstRowIsNoted)
{
    EventLogBuilder::Run(mDerived, "insert into Jank values (-9223372036854775807 - 1, 'y', 1699999999)");
    Item().sql = "select abs(n) as n, s from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "6")}));
    EXPECT_EQ(mReason, Reason::STATEMENT_FAILED);
    mEngine.SetRecord(&mRecord);
    EXPECT_TRUE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::CONDITION_MET);
    EXPECT_THAT(mRecord.notes, testing::Contains(Reason::STATEMENT_FAILED));
}

TEST_F(CommandEvidenceTest, WhyAStatementFailedIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Item().sql = "select n from Missing";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::STATEMENT_FAILED);
    EXPECT_THAT(EvidenceLines(mRecord, "query"), ElementsAre("query " + mDerived
        + " rows 0: select n from Missing where occurrence_time >1697408000 failed: no such table: Missing"));
}

// The statement may be mended on the device, the condition in the rule set only.
TEST_F(CommandEvidenceTest, AnErrorOfTheRuleIsNotedBesideTheTroubleOfItsStatement)
{
    mEngine.SetRecord(&mRecord);
    Item().sql = "select n from Missing";
    auto unknown = Single("eq", "n", "5");
    unknown->SetType("triple_logic");
    EXPECT_FALSE(Fires({unknown}));
    EXPECT_EQ(mReason, Reason::STATEMENT_FAILED);
    EXPECT_THAT(mRecord.notes, ElementsAre(Reason::UNKNOWN_CONDITION));
}

// Whatever the copies that are there answer.
TEST_F(CommandEvidenceTest, ACopyOrATableThatIsMissingBesideSoundOnesIsNoted)
{
    const auto notes = [this] {
        mRecord = {};
        mEngine.SetRecord(&mRecord);
        Fires({Single("eq", "n", "5")});
        return mRecord.notes;
    };
    Refer("singleDB", "", {30});
    EXPECT_THAT(notes(), IsEmpty());
    mTable->SetLacksCopies(true);
    EXPECT_THAT(notes(), ElementsAre(Reason::DATABASE_UNAVAILABLE));
    mTable->SetLacksCopies(false);
    mTable->SetLacksTables(true);
    EXPECT_THAT(notes(), ElementsAre(Reason::TABLE_INCOMPLETE));
}

TEST_F(CommandEvidenceTest, TheIntervalAndWhatIsScaledByItAreNoted)
{
    mEngine.SetRecord(&mRecord);
    Item().type = "normalization";
    Item().timeParamList = {"t", "n"};
    mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("t", "string")});
    Item().sql = "select 1, n, occurrence_time, occurrence_time from Jank";
    EXPECT_TRUE(Fires({Single("eq", "n", "150")}));
    EXPECT_THAT(EvidenceLines(mRecord, "interval"), ElementsAre("interval t=1699999999 to t=1699999999 days 0"));
    EXPECT_THAT(EvidenceLines(mRecord, "parameter"), testing::Contains("parameter n n int '5' -> '150'"));
}

TEST_F(CommandEvidenceTest, WithoutAnIntervalNothingIsScaled)
{
    mEngine.SetRecord(&mRecord);
    Item().type = "normalization";
    Item().timeParamList = {"t", "n"};
    mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("t", "string")});
    Item().sql = "select 1, n, occurrence_time, 0 from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "150")}));
    EXPECT_EQ(mReason, Reason::NO_INTERVAL);
    EXPECT_THAT(EvidenceLines(mRecord, "interval"), ElementsAre("interval t=0 to t=0 days 0 unusable"));
    EXPECT_THAT(EvidenceLines(mRecord, "parameter"), IsEmpty());
    mRecord = {};
    Item().timeParamList = {"t"};
    EXPECT_FALSE(Fires({Single("eq", "n", "150")}));
    EXPECT_EQ(mReason, Reason::NO_INTERVAL);
    EXPECT_THAT(EvidenceLines(mRecord, "interval"), ElementsAre("interval =0 to =0 days 0 unusable"));
}

TEST_F(CommandEvidenceTest, AnEmptyThresholdIsAReasonOfItsOwn)
{
    mEngine.SetRecord(&mRecord);
    mBean->GetThresholdMap().at("limit")->value = "";
    EXPECT_FALSE(Fires({Single("gt", "n", "limit", "dynamic")}));
    EXPECT_EQ(mReason, Reason::NO_THRESHOLD);
    EXPECT_THAT(EvidenceLines(mRecord, "compare"), ElementsAre("compare n n int '5' gt '' from dynamic limit fails"));
    EXPECT_FALSE(Fires({Single("eq", "n", "nothing", "systemParam")}));
    EXPECT_EQ(mReason, Reason::NO_THRESHOLD);
    EXPECT_FALSE(Fires({Single("gt", "n", "")}));
    EXPECT_EQ(mReason, Reason::NO_THRESHOLD);
}

TEST_F(CommandEvidenceTest, WithoutAReasonForNoCopyNoneIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Refer("countDB", "2", {});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), IsEmpty());
    mTable->SetDbPathList({nullptr});
    mTable->SetNoCopy(Evidence::NoCopy::FOLDER_MISSING, "");
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre("missing folder_missing ''"));
}

} // namespace
