// What a detection writes into the records of a rule set, and that it is gone afterwards.
#include "arborist/loading/fresh_records.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/model/gate.h"
#include "tests/support/log_capture.h"
#include "tests/support/rule_set_dump.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using Bean = ThresholdOrLumbraBean;

Xml CommonXml()
{
    return Xml("thresholdsOrLumbraData").Attr("name", "lag")
        .Child(Xml("SystemParamTable").Child(ParamsXml({ParamXml("ram", "RAM_SIZE", "string")})))
        .Child(Xml("ThresholdParamTable").Child(ParamsXml({ParamXml("limit", "limit", "int")})))
        .Child(Xml("retrieveLumbraData").Child(AlarmIdXml("900", "900", {ParamsXml({ParamXml("1", "ms", "int")})})));
}

class FreshRecords : public testing::Test {
protected:
    FreshRecords()
    {
        const Xml params = ParamsXml({ParamXml("p", "a", "int")});
        const Xml tests = ConditionXml({MultipleLogicXml({TestXml("gt", "p", "1"), TestXml("lt", "p", "9")})});
        mDir.Write("FaultTrees.xml", TreeXml("jank").Version("3").Tree("T", Or({Basic("A"),
            Intermediate("G", And({Basic("B"), Xml("Other").TextChild("ID", "U")}))})).Text());
        mDir.Write("FaultTreeRules.xml", RuleXml("jank")
            .CommonPart({CommonXml(), Xml("defDBTable").Attr("name", "battery").Child(Xml("dbName").Attr("name", "x"))})
            .Rule(AlarmRuleXml("alarm", {AlarmIdXml("1", "2", {TimeXml("duration", "3", "1"), TimeXml("daily_peak", "3", "1"),
                TimeXml("latest", "3", "1"), params, tests})}))
            .Rule(CommandRuleXml("command").Child(Xml("queryReturnParam").Child(params)).Child(AnalysisMethodXml("",
                {Xml("sql").Text("select 1"), TimeXml("duration", "3", "0"), tests})))
            .Rule(NodeRuleXml("node", {NodeInfoXml("p", "/x"), params, tests}))
            .Rule(NodeRuleXml("unnamed", {NodeInfoXml("p", "/x"), params, tests}))
            .Rule(CodeRuleXml("code", "C1"))
            .EventRule("A", {Single("alarm"), Multiple({"node", "command"})})
            .Text());
        mParser.StartParse();
    }

    template <typename Family>
    Family& RuleOf(const std::string& name)
    {
        return dynamic_cast<Family&>(*mParser.GetRuleByRuleName(name));
    }

    static void Set(const ParamMap& params) { params.at("p")->value = "7"; }
    static void Set(const ConditionList& conditions) { conditions.at(0)->GetLogicItemList().at(1)->SetResult(true); }

    Event& TopEvent() { return *mParser.GetFaultTrees().at(0)->GetIntermediateEvent(); }
    Event& EventBelow(const Event& event, std::size_t place)
    {
        return *event.AsIntermediate()->GetGate()->GetEvents().at(place);
    }
    Bean& GetBean() { return *mParser.GetCommonPart()->GetThresholdLumbraList().at(0); }
    DefDbTableBean& GetDatabases() { return *mParser.GetCommonPart()->GetDefDbTableCommonList().at(0); }

    // Each writes one of the fields that detections write.
    std::vector<std::function<void()>> Writes()
    {
        const auto item = RuleOf<AlarmRule>("alarm").alarmItemList.at(0);
        auto& command = RuleOf<CommandRule>("command");
        auto& node = RuleOf<NodeRule>("node");
        auto& sql = command.analysisMethod.sqlItem;
        auto& entry = *mParser.GetEventRuleByEventId("A");
        return {
            [this] { TopEvent().SetResult(EventStatus::TRUE); },
            [this] { EventBelow(TopEvent(), 0).SetResult(EventStatus::TRUE); },
            [this] { EventBelow(EventBelow(TopEvent(), 1), 0).SetResult(EventStatus::UNKNOWN); },
            [this] { EventBelow(EventBelow(TopEvent(), 1), 1).SetResult(EventStatus::FALSE); },
            [this] { TopEvent().SetObservable(false); },
            [this] { EventBelow(TopEvent(), 1).SetObservable(false); },
            [item] { item->duration->timeType = TimeSet::LATEST; },
            [item] { item->daily_peak->timeType = TimeSet::DAILY_PEAK; },
            [item] { item->latest->timeType = TimeSet::LATEST; },
            [item] { Set(item->params); },
            [item] { Set(item->conditionList); },
            [&command] { Set(command.params); },
            [&sql] { sql.time.timeType = TimeSet::LATEST; },
            [&sql] { Set(sql.conditionList); },
            [&node] { Set(node.GetParamMap()); },
            [&node] { Set(node.GetConditionList()); },
            [&entry] { entry.SetRuleResult(true); },
            [&entry] { entry.GetRuleList().at(1)->result = true; },
            [this] { GetBean().GetSystemParamMap().at("ram")->value = "16G"; },
            [this] { GetBean().GetThresholdMap().at("limit")->value = "2"; },
            [this] { GetBean().GetLumbraDataList().at(0)->GetParamMap().at("1")->value = "50"; },
            [this] { GetBean().SetTableState(Bean::TableState::NOT_BUILT); },
            [this] { GetBean().SetTableState(Bean::TableState::INCOMPLETE); },
            [this] { GetDatabases().SetCopyDbFileList({"copy"}); },
            [this] { GetDatabases().SetNoCopy(Evidence::NoCopy::FOLDER_MISSING, ""); },
            [this] { GetDatabases().SetNoCopy(Evidence::NoCopy::NONE, "/data"); },
            [this] { GetDatabases().SetLacksCopies(true); },
            [this] { GetDatabases().SetLacksTables(true); },
        };
    }

    TempDir mDir;
    LogCapture mLog;
    FaultTreeParser mParser{DetectInfoFor(mDir, "jank")};
};

TEST_F(FreshRecords, AreAsReadAfterEachFieldThatADetectionWrites)
{
    const auto fresh = DumpOf(mParser);
    const auto writes = Writes();
    for (std::size_t write = 0; write < writes.size(); ++write) {
        writes[write]();
        EXPECT_NE(DumpOf(mParser), fresh) << "write " << write;
        MakeRecordsFresh(mParser);
        EXPECT_EQ(DumpOf(mParser), fresh) << "write " << write;
    }
}

TEST_F(FreshRecords, AreThoseOfASecondReading)
{
    for (const auto& write : Writes()) {
        write();
    }
    MakeRecordsFresh(mParser);
    FaultTreeParser again(DetectInfoFor(mDir, "jank"));
    again.StartParse();
    EXPECT_EQ(DumpOf(mParser), DumpOf(again));
}

TEST_F(FreshRecords, RulesThatNoEventNamesAreNotLookedAt)
{
    Set(RuleOf<NodeRule>("unnamed").GetParamMap());
    const auto written = DumpOf(mParser);
    MakeRecordsFresh(mParser);
    EXPECT_EQ(DumpOf(mParser), written);
}

TEST_F(FreshRecords, NoFileLeavesNothingToDo)
{
    std::filesystem::remove("FaultTrees.xml");
    std::filesystem::remove("FaultTreeRules.xml");
    FaultTreeParser parser(DetectInfoFor(mDir, "jank"));
    parser.StartParse();
    MakeRecordsFresh(parser);
    EXPECT_THAT(parser.GetFaultTrees(), testing::IsEmpty());
}

} // namespace
