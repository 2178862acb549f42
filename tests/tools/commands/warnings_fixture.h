#ifndef ARBORIST_TESTS_TOOLS_COMMANDS_WARNINGS_FIXTURE_H
#define ARBORIST_TESTS_TOOLS_COMMANDS_WARNINGS_FIXTURE_H

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

inline constexpr char LOG[] = "b/programdata/Comms/Lumbra/workDir/0/log.db";
inline constexpr std::int64_t NOW = 1700000000;
inline const std::string ALL_ATTRIBUTES =
    R"(, "device": {"CpuName": "c", "RamSize": "8", "Resolution": "r", "BatteryCapacity": "5"})";

inline Xml Alarm(const std::string& beginFlag = "1")
{
    return AlarmRuleXml("alarm", {AlarmIdXml("5", "5", {TimeXml("duration", "30", "1")}).Attr("BeginFlag", beginFlag)});
}

/// A bean "EVENTS" whose derived table has the events of the number 5.
inline Xml Events(const std::string& column = "LOST")
{
    return Xml("thresholdsOrLumbraData").Attr("name", "EVENTS")
        .Child(Xml("retrieveLumbraData").Child(Xml("alarmId").Attr("Eventid_Min", "5").Attr("Eventid_Max", "5")
            .Child(ParamsXml({ParamXml("1", column, "int")}))));
}

/// The same with a threshold that depends on the device.
inline Xml Thresholds()
{
    return Events().Child(Xml("ThresholdParamTable").Child(ParamsXml({ParamXml("limit", "LIMIT", "int")})));
}

/// Databases below "found".
inline Xml Databases()
{
    return Xml("defDBTable").Attr("name", "D")
        .Child(Xml("dbPaths").Child(
            Xml("dbPath").Attr("decompression", "true").Attr("type", "folder").Attr("value", "found")))
        .Child(Xml("dbName").Attr("name", ".*\\.db"));
}

inline Xml Command(const std::string& sql)
{
    const auto some = ConditionXml({SingleLogicXml(Xml("ge").Attr("type", "static").TextChild("id", "n")
        .TextChild("value", "1"))});
    return CommandRuleXml("command")
        .Child(Xml("referenceCommonPart").TextChild("commonPartName", "EVENTS"))
        .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
        .Child(AnalysisMethodXml("", {Xml("sql").Text(sql), TimeXml("duration", "30", "0"), some}));
}

/// Detections of a bundle "b" with one rule.
class WarningsTest : public testing::Test {
public:
    // A bundle with one tree, one event and that rule.
    void WriteBundle(const Xml& rule, const std::string& ruleName, const std::vector<Xml>& commonPart = {},
        const std::string& json = "")
    {
        RuleXml rules("Tag");
        rules.EventRule("E", {Single(ruleName)}).Rule(rule);
        if (!commonPart.empty()) {
            rules.CommonPart(commonPart);
        }
        mDir.Write("b/bundle.json", BundleJson(", \"now\": " + std::to_string(NOW) + json));
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", Or({Basic("E")})).Text());
        mDir.Write("b/rules/FaultTreeRules.xml", rules.Text());
    }

    // An alarm rule "r" with one time.
    void WriteTimedBundle(const std::string& type, const std::string& period)
    {
        WriteBundle(AlarmRuleXml("r", {AlarmIdXml("5", "5", {TimeXml(type, period, "1")})}), "r");
    }

    static ProcessResult Detect(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = {"detect", "b", "--log-level", "none"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunArborist(arguments);
    }

    TempDir mDir;
};

inline void WriteLog(const WarningsTest& test, const std::vector<LoggedRow>& rows, const std::string& sql = "")
{
    EventLogBuilder builder;
    builder.Rows(rows);
    (sql.empty() ? builder : builder.Sql(sql)).WriteTo(test.mDir.Path(LOG));
}

inline const LoggedRow ROW{NOW - 5, 5, "", ""};

/// The sum of a node file and 1.
inline Xml FormulaRule()
{
    return NodeRuleXml("formula", {NodeInfoXml("A", "current"),
        ParamsXml({ParamXml("a", "A", "int"), ParamXml("s", "S", "int")}),
        Xml("logicExpression").Attr("type", "double").Attr("ret", "S").Attr("express", "A+1"),
        ConditionXml({SingleLogicXml(TestXml("gt", "s", "70"))})});
}

#endif
