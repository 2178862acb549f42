#include "tests/frame/all_families.h"

#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/xml_builder.h"
#include "tests/support/zip_file.h"

namespace {

const std::string TAG = "All";

// A test of a command rule with the source of its threshold.
Xml FromXml(const std::string& source, const std::string& word, const std::string& paramId, const std::string& text)
{
    return Xml(word).Attr("type", source).TextChild("id", paramId).TextChild(
        source == "static" ? "value" : "commonPartParamId", text);
}

Xml SqlRuleXml(const std::string& name, const std::string& sql, const Xml& test, const std::string& table = "")
{
    Xml rule = CommandRuleXml(name);
    rule.Child(Xml("referenceCommonPart").TextChild("commonPartName", "lag"));
    if (!table.empty()) {
        rule.Child(Xml("referenceDefDB").Attr("type", "singleDB").TextChild("defDBName", table));
    }
    return rule.Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
        .Child(AnalysisMethodXml("", {Xml("sql").Text(sql), ConditionXml({SingleLogicXml(test)})}));
}

// A table "lag" of the events 900 with their ms, and a limit that depends on the memory.
Xml LagXml()
{
    const Xml condition = Xml("condition").Child(Xml("or").Attr("type", "multiple_logic").Child(
        Xml("in").TextChild("id", "ram").Child(Xml("set").TextChild("value", "8G").TextChild("value", "16G"))));
    const Xml thresholds = Xml("thresholds").Child(Xml("threshold").Attr("id", "limit").Attr("value", "2"));
    return Xml("thresholdsOrLumbraData")
        .Attr("name", "lag")
        .Child(Xml("SystemParamTable").Child(ParamsXml({ParamXml("ram", "RAM_SIZE", "string")})))
        .Child(Xml("ThresholdParamTable").Child(ParamsXml({ParamXml("limit", "limit", "int")})))
        .Child(Xml("ThresholdMappingTable").Child(Xml("ThresholdItem").Child(condition).Child(thresholds)))
        .Child(Xml("retrieveLumbraData").Child(AlarmIdXml("900", "900", {ParamsXml({ParamXml("1", "ms", "int")})})));
}

Xml ExternalXml(const std::string& directory)
{
    return Xml("defDBTable")
        .Attr("name", "battery")
        .Child(Xml("dbPaths").Child(
            Xml("dbPath").Attr("decompression", "true").Attr("type", "dir").Attr("value", directory)))
        .Child(Xml("dbName").Attr("name", ".*battery\\.(db|zip)"))
        .Child(Xml("createTables").Child(Xml("createNewTable").Attr("tableName", "low").TextChild(
            "sql", "create table low as select count(*) as n from charge where level < 10;")));
}

} // namespace

AllFamilies::AllFamilies() : mInfo(DetectInfoFor(mDir, TAG))
{
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("programdata"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies"));
    mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
    mRunner->answer = true;
    mInfo->mCodeRuleRunner = mRunner;
    mInfo->mDeviceDetails = std::make_shared<DeviceDetails>("", "", "", "i7", "16G", "4K", "5000");
    EventLogBuilder()
        .Rows({{NOW - 10, 700, "", ""}, {NOW - 20, 700, "", ""}, {NOW - 30, 900, "", R"({"ms":50})"},
            {NOW - 40, 900, "", R"({"ms":70})"}, {NOW - 50, 900, "", R"({"ms":90})"},
            {NOW - 60, 900, "", R"({"ms":10})"}, {NOW - 70, 900, "", R"({"ms":20})"}})
        .WriteTo(mDir.Path("programdata/Comms/Lumbra/workDir/0/log.db"));
    EventLogBuilder::Run(mDir.Path("battery.db"),
        "create table charge(level); insert into charge values (5), (50)");
    mDir.MakeDir("device/data");
    WriteZip(mDir.Path("device/data/battery.zip"), {{"battery.db", mDir.Read("battery.db")}});
    mDir.Write("device/sys/temp", "95\n");
    mDir.Write("FaultTrees.xml", TreeXml(TAG)
        .Tree("T", Or({Basic("alarm"), Basic("derived"), Basic("external"), Basic("node"), Basic("code"),
            Basic("calm")}))
        .Tree("U", And({Basic("node"), Basic("calm")})).Text());
    WriteRules();
}

AllFamilies::~AllFamilies() = default;

void AllFamilies::WriteRules() const
{
    const std::string laggy = mEndless.empty() ? "select count(*) from lag where ms >= 50" : mEndless;
    mDir.Write("FaultTreeRules.xml", RuleXml(TAG)
        .CommonPart({LagXml(), ExternalXml("/data")})
        .Rule(AlarmRuleXml("twice", {AlarmIdXml("700", "700", {TimeXml("duration", "30", "2")})}))
        .Rule(SqlRuleXml("laggy", laggy, FromXml("dynamic", "gt", "n", "limit")))
        .Rule(SqlRuleXml("calm", "select count(*) from lag where ms >= 80", FromXml("dynamic", "gt", "n", "limit")))
        .Rule(SqlRuleXml("low", "select n from low", FromXml("static", "ge", "n", "1"), "battery"))
        .Rule(NodeRuleXml("hot", {NodeInfoXml("t", "/sys/temp"), ParamsXml({ParamXml("t", "t", "int")}),
            ConditionXml({MultipleLogicXml({TestXml("gt", "t", "90")})})}))
        .Rule(CodeRuleXml("ask", "C1", "{}"))
        .EventRule("alarm", {Single("twice")})
        .EventRule("derived", {Single("laggy")})
        .EventRule("external", {Single("low")})
        .EventRule("node", {Single("hot")})
        .EventRule("code", {Single("ask")})
        .EventRule("calm", {Single("calm")})
        .Repair("alarm", {{"R1", ""}})
        .Text());
}
