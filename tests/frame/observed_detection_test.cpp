#include "arborist/frame/arborist.h"

#include <gmock/gmock.h>

#include "tests/frame/arborist_fixture.h"
#include "tests/support/recording_observer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(ArboristTest, ObserverIsToldOneDetectionFromFilesToCauses)
{
    WriteBattery();
    Arborist arborist(mInfo);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    arborist.StartDetection();
    EXPECT_THAT(observer->Lines(),
                ElementsAre(
                    "file trees loaded " + mDir.Path("FaultTrees.xml") + " count 1 line 0",
                    "file rules loaded " + mDir.Path("FaultTreeRules.xml") + " count 3 line 0",
                    "tree battery version 1 type test",
                    "event wear (Wear)", "ask wear worn node #0", "node full /sys/full = '29000\n'",
                    "node design /sys/design = '50000\n'",
                    "formula result = full / design as full / design -> 0.580000",
                    "compare result result double '0.580000' lt '0.6' holds",
                    "rule wear worn node TRUE [condition_met]", "decided wear TRUE",
                    "event cycles ()", "ask cycles old node #0", "node count /sys/count = '612\n'",
                    "formula result = count as count -> 612.000000",
                    "compare result result double '612.000000' ge '500' holds",
                    "rule cycles old node TRUE [condition_met]", "decided cycles TRUE",
                    "event hot ()", "ask hot heat node #0", "node temp /sys/temp = '31\n'",
                    "formula result = temp - 40 - 5 as temp - (40 - 5) -> -4.000000",
                    "compare result result double '-4.000000' gt '20' fails",
                    "rule hot heat node FALSE [condition_not_met]", "decided hot FALSE",
                    "folded 0 intermediate or battery () TRUE", "folded 1 intermediate and aged () TRUE",
                    "folded 2 basic wear (Wear) TRUE {}", "folded 2 basic cycles () TRUE",
                    "folded 1 basic hot () FALSE",
                    "cause wear: battery/aged/wear & battery/aged/cycles up wear,aged,battery,cycles",
                    "finished battery fault"));
}

TEST_F(ArboristTest, ObserverIsToldEventsOfEveryKindAndStatus)
{
    WriteTrees(TreeXml(TAG).Tree("T", Or({Xml("House").TextChild("ID", "U"), Basic("A"),
        Intermediate("G", And({Basic("B")})), Xml("Intermediate-Event").TextChild("ID", "N")})));
    WriteRules(RuleXml(TAG).EventRule("G", {Single("c")}).Rule(CodeRuleXml("c", "C", "", "2")));
    Arborist arborist(mInfo);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    arborist.StartDetection();
    EXPECT_THAT(observer->Lines("folded"), ElementsAre("folded 0 intermediate or T () UNKNOWN",
        "folded 1 undeveloped U () UNKNOWN", "folded 1 basic A () FALSE",
        "folded 1 intermediate and G () FALSE observable", "folded 2 basic B () FALSE",
        "folded 1 intermediate N () FALSE"));
    EXPECT_THAT(observer->Lines("ask"), ElementsAre("ask G c code #0"));
}

TEST_F(ArboristTest, ObserverIsToldOfFilesThatCantBeRead)
{
    mDir.Write("FaultTrees.xml", "<FaultTrees>\n<a>");
    Arborist arborist(mInfo);
    const auto observer = std::make_shared<RecordingObserver>();
    arborist.SetObserver(observer);
    arborist.IsRunRule("C");
    ASSERT_THAT(observer->Lines(), SizeIs(2));
    EXPECT_THAT(observer->Lines()[0], testing::StartsWith("file trees malformed " + mDir.Path("FaultTrees.xml")));
    EXPECT_EQ(observer->Lines()[1], "file rules missing " + mDir.Path("FaultTreeRules.xml") + " count 0 line 0");
}

TEST_F(ArboristTest, ObserverChangesNeitherResultsNorLog)
{
    WriteBattery();
    Arborist plain(mInfo);
    const auto results = Texts(plain.StartDetection());
    const auto log = mLog.Lines();
    mLog.Clear();
    Arborist observed(mInfo);
    observed.SetObserver(std::make_shared<RecordingObserver>());
    EXPECT_EQ(Texts(observed.StartDetection()), results);
    EXPECT_EQ(mLog.Lines(), log);
}

TEST_F(ArboristTest, ObserverCanBeChangedAndTakenAway)
{
    WriteBattery();
    Arborist arborist(mInfo);
    auto first = std::make_shared<RecordingObserver>();
    const auto second = std::make_shared<RecordingObserver>();
    arborist.SetObserver(first);
    arborist.StartDetection();
    EXPECT_THAT(first->Lines("finished"), SizeIs(1));
    arborist.SetObserver(second);
    first.reset();
    arborist.StartDetection();
    EXPECT_THAT(second->Lines("formula"), SizeIs(3)); // checkers that were created before use it, too
    second->Clear();
    arborist.SetObserver(nullptr);
    arborist.StartDetection();
    EXPECT_THAT(second->Lines(), IsEmpty());
}

} // namespace
