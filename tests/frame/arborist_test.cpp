#include "arborist/frame/arborist.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/utilities/zip_util.h"
#include "tests/frame/arborist_fixture.h"
#include "tests/support/recording_observer.h"

/// Gives access to private steps that no public call reaches.
struct ArboristPeer {
    static bool InitFaultTree(Arborist& arborist) { return arborist.InitFaultTree(); }
    static const std::string& UnzipDir(const Arborist& arborist) { return arborist.mUnzipDir; }
};

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(ArboristTest, FindsRootCausesFromFilesToIds)
{
    WriteBattery();
    const auto results = Arborist(mInfo).StartDetection();
    EXPECT_THAT(Texts(results), ElementsAre("battery v7 fault wear[F1 S1 S2 R1 R2]"));
    ASSERT_THAT(results, SizeIs(1));
    EXPECT_EQ(results[0]->mRootCauseResults[0]->mNode->mName, "Wear");
    EXPECT_EQ(results[0]->mRootCauseResults[0]->mNode->mUserDefined, "{}");
    EXPECT_THAT(OwnLines(FT::LEVEL_DEBUG), ElementsAre("FUNc:Arborist::StartDetection: StartDetection Parse finished",
                                                       "FUNc:Arborist::StartDetection: StartDetection Run finished"));
}

TEST_F(ArboristTest, CauseWithoutDescriptionKeepsItEmptyAndStays)
{
    WriteBattery();
    WriteNode("count", "12");
    WriteNode("temp", "57"); // 57 - (40 - 5) = 22
    EXPECT_THAT(Texts(Arborist(mInfo).StartDetection()), ElementsAre("battery v7 fault hot[]"));
}

TEST_F(ArboristTest, HealthyTreesHaveResultsTooInFileOrder)
{
    WriteTrees(TreeXml(TAG).Tree("second", Or({Basic("B")})).Tree("first", Or({Basic("A")})));
    WriteRules(RuleXml(TAG));
    EXPECT_THAT(Texts(Arborist(mInfo).StartDetection()), ElementsAre("second v-1 no fault", "first v-1 no fault"));
}

TEST_F(ArboristTest, CodeRuleDecidesByTheHostsAnswer)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})));
    WriteRules(RuleXml(TAG).Rule(CodeRuleXml("c", "C", "info")).EventRule("A", {Single("c")}).Solution("A", {"S"}));
    mRunner->answer = true;
    EXPECT_THAT(Texts(Arborist(mInfo).StartDetection()), ElementsAre("T v-1 fault A[ S]"));
    EXPECT_THAT(mRunner->calls, ElementsAre("|S||info"));
}

TEST_F(ArboristTest, MissingRuleFileGivesNoResults)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A")})));
    EXPECT_THAT(Arborist(mInfo).StartDetection(), IsEmpty());
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN), ElementsAre("FUNc:Arborist::StartDetection: startDetection time out"));
    EXPECT_FALSE(mDir.Has("programdata"));
}

TEST_F(ArboristTest, TreeFileWithoutTreesGivesNoResults)
{
    WriteTrees(TreeXml(TAG));
    WriteRules(RuleXml(TAG));
    EXPECT_THAT(Arborist(mInfo).StartDetection(), IsEmpty());
    EXPECT_THAT(OwnLines(FT::LEVEL_WARN),
                ElementsAre("FUNc:Arborist::StartDetection: StartDetection fault tree is invalid"));
    EXPECT_TRUE(mDir.Has("programdata/Comms/Lumbra/zxdetectrepair/databases")); // rules were still prepared
}

TEST_F(ArboristTest, EveryDetectionReadsTheFilesAnewAndEarlierResultsStay)
{
    WriteBattery();
    Arborist arborist(mInfo);
    const auto before = arborist.StartDetection();
    WriteTrees(TreeXml(TAG).Version("8").Tree("other", Or({Basic("hot")})));
    EXPECT_THAT(Texts(arborist.StartDetection()), ElementsAre("other v8 no fault"));
    EXPECT_THAT(Texts(before), ElementsAre("battery v7 fault wear[F1 S1 S2 R1 R2]"));
}

TEST_F(ArboristTest, SecondDetectionSeesAHealedDevice)
{
    WriteBattery();
    Arborist arborist(mInfo);
    EXPECT_TRUE(arborist.StartDetection()[0]->mIsFault);
    WriteNode("count", "3");
    EXPECT_FALSE(arborist.StartDetection()[0]->mIsFault);
}

// Nothing removes the rule set that was read, and what fired once stays true as long as its records exist.
TEST_F(ArboristTest, WhereTheFilesAreGoneASecondDetectionKeepsTheRuleSetAndWhatFired)
{
    WriteBattery();
    Arborist arborist(mInfo);
    EXPECT_THAT(arborist.StartDetection(), SizeIs(1));
    std::filesystem::remove(mDir.Path("FaultTreeRules.xml"));
    mDir.Write("FaultTrees.xml", "<cut off");
    WriteNode("count", "3");
    WriteNode("temp", "57");
    EXPECT_THAT(Texts(arborist.StartDetection()), ElementsAre("battery v7 fault wear[F1 S1 S2 R1 R2] hot[]"));
}

// The checker of command rules is created once, with the shared data of that time.
TEST_F(ArboristTest, CommandRulesKeepTheSharedDataOfTheirFirstDetection)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A")})));
    const Xml countsCopies = CommandRuleXml("c")
                                 .Child(Xml("referenceDefDB").TextChild("defDBName", "d"))
                                 .Child(Xml("AnalysisMethod").Attr("type", "SQL").Child(Xml("SQL_Condition")));
    WriteRules(RuleXml(TAG).Rule(countsCopies).EventRule("A", {Single("c")}));
    Arborist arborist(mInfo);
    EXPECT_FALSE(arborist.StartDetection()[0]->mIsFault);
    WriteRules(RuleXml(TAG)
                   .Rule(countsCopies)
                   .EventRule("A", {Single("c")})
                   .CommonPart({Xml("defDBTable").Attr("name", "d")}));
    EXPECT_FALSE(arborist.StartDetection()[0]->mIsFault);
    EXPECT_TRUE(Arborist(mInfo).StartDetection()[0]->mIsFault); // without a number, zero copies are enough
}

TEST_F(ArboristTest, EmptySharedDataLeavesThatOfTheDetectionBefore)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Basic("A")})));
    const auto write = [this](const std::vector<Xml>& sharedData) {
        WriteRules(RuleXml(TAG).CommonPart(sharedData).EventRule("A", {Single("c")}).Rule(CommandRuleXml("c")
            .Child(Xml("referenceDefDB").TextChild("defDBName", "d"))
            .Child(Xml("AnalysisMethod").Attr("type", "SQL").Child(Xml("SQL_Condition")))));
    };
    write({Xml("defDBTable").Attr("name", "d")});
    Arborist arborist(mInfo);
    EXPECT_TRUE(arborist.StartDetection()[0]->mIsFault);
    write({});
    EXPECT_TRUE(arborist.StartDetection()[0]->mIsFault);
    EXPECT_FALSE(Arborist(mInfo).StartDetection()[0]->mIsFault);
}

TEST_F(ArboristTest, WithoutDetectInfoEveryCallAnswersEmptyWithItsMessage)
{
    Arborist arborist(nullptr);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    EXPECT_THAT(arborist.StartDetection(), IsEmpty());
    EXPECT_FALSE(arborist.IsRunRule("C"));
    EXPECT_EQ(arborist.GetCodeRuleFaultDescId("C"), "");
    EXPECT_EQ(arborist.GetCodeRuleSuggestionId("C"), "");
    EXPECT_EQ(arborist.GetCodeRuleRepairId("C"), "");
    EXPECT_FALSE(ArboristPeer::InitFaultTree(arborist));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
                ElementsAre("FUNc:Arborist::StartDetection: startDetection time out",
                            "FUNc:Arborist::IsRunRule: mDetectInfo or codeRuleId is null in isRunRule()",
                            "FUNc:Arborist::GetCodeRuleFaultDescId: parse time out in GetCodeRuleFaultDescId",
                            "FUNc:Arborist::GetCodeRuleSuggestionId: parse time out in GetCodeRuleSuggestionId",
                            "FUNc:Arborist::GetCodeRuleRepairId: parse time out in GetCodeRuleRepairId"));
    EXPECT_THAT(observer->Lines(), IsEmpty());
}

// ---- The rule archive. ----

TEST_F(ArboristTest, RuleArchiveIsUnpackedBesideItself)
{
    mDir.Write("source.txt", "content");
    const auto archive = ZipUtil::CreateZipFile(mDir.Path("FaultTree.zip"));
    ASSERT_TRUE(ZipUtil::AddFileInZip(archive, mDir.Path("source.txt"), 0, "inside.txt"));
    ZipUtil::CloseZipFile(archive);
    Arborist arborist(mInfo);
    mDir.MakeDir("temp_Laptop");
    EXPECT_TRUE(ArboristPeer::InitFaultTree(arborist));
    EXPECT_EQ(ArboristPeer::UnzipDir(arborist), mDir.Path() + "/temp_Laptop/");
    EXPECT_EQ(mDir.Read("temp_Laptop/inside.txt"), "content");
}

TEST_F(ArboristTest, WithoutRuleArchiveNothingIsUnpacked)
{
    Arborist arborist(mInfo);
    EXPECT_FALSE(ArboristPeer::InitFaultTree(arborist));
    EXPECT_EQ(ArboristPeer::UnzipDir(arborist), "");
}

TEST_F(ArboristTest, BrokenRuleArchiveIsRefused)
{
    mDir.Write("FaultTree.zip", "no archive");
    Arborist arborist(mInfo);
    EXPECT_FALSE(ArboristPeer::InitFaultTree(arborist));
}

} // namespace
