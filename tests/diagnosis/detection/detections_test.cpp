#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/detection/detection.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using diagnosis::DetectionOptions;
using diagnosis::DetectionReport;
using diagnosis::RunDetection;
using diagnosis::RunDetections;

constexpr char LOG[] = "b/programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char DERIVED[] = "b/programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";

// A bundle and two rule sets "old" and "new" whose rules leave much behind: derived tables of one name, what their SQL
// makes beside them, and copies of databases.
class DetectionsTest : public testing::Test {
protected:
    DetectionsTest()
    {
        mDir.Write("b/bundle.json", R"({"detectScene": 1, "treeTag": "Tag", "tz": "UTC", "now": "2024-05-20 12:00:00",
            "settings": {"AppDatabaseDir": "copies"}})");
        mDir.Write("b/temperature", "80");
        EventLogBuilder().Rows({{1716206000, 7, "", R"({"A": "x"})"}, {1716206001, 8, "", R"({"A": "y"})"}})
            .WriteTo(mDir.Path(LOG));
        EventLogBuilder::Run(mDir.Write("b/device/data/some.db", ""), "CREATE TABLE t (n); INSERT INTO t VALUES (3)");
        WriteRules("old", "7", "select count(*) as n from T where 1");
        WriteRules("new", "8", "select count(*) as n from T where 1");
    }

    // Rules that count the rows of the table T, of a table of the other rule set, and the rows and tables of the copies.
    void WriteRules(const std::string& folder, const std::string& event, const std::string& sql) const
    {
        const auto asked = [](const std::string& name, const std::string& statement, const std::string& condition) {
            return CommandRuleXml(name).Child(Xml("referenceCommonPart").TextChild("commonPartName", "T"))
                .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("1", "n", "int")})))
                .Child(AnalysisMethodXml(condition, {Xml("sql").Text(statement),
                    ConditionXml({SingleLogicXml(TestXml("ge", "1", "1").Attr("type", "static"))})}));
        };
        const auto table = [&event](const std::string& name) {
            return Xml("thresholdsOrLumbraData").Attr("name", name).Child(Xml("retrieveLumbraData").Child(
                AlarmIdXml("", event, {ParamsXml({ParamXml("1", "A", "text")})})));
        };
        const auto copies = Xml("defDBTable").Attr("name", "D")
            .Child(Xml("dbPaths").Child(Xml("dbPath").Attr("value", "/data").Attr("decompression", "false").Attr("type", "x")))
            .Child(Xml("dbName").Attr("name", ".*some\\.db"))
            .Child(Xml("createTables").Child(Xml("createNewTable").Attr("tableName", "x").TextChild("sql", "create table made_by_" + folder + " (n)")));
        const auto ofCopies = CommandRuleXml("copied").Child(Xml("referenceDefDB").Attr("type", "singleDB").TextChild("defDBName", "D"))
            .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("1", "n", "int")})))
            .Child(AnalysisMethodXml("defDBSql", {Xml("sql").Text("select count(*) as n from sqlite_master where name like 'made_by_%'"),
                ConditionXml({SingleLogicXml(TestXml("eq", "1", "1").Attr("type", "static"))})}));
        const std::string other = folder == "old" ? "ONLY_new" : "ONLY_old";
        mDir.Write(folder + "/FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("A"), Basic("B"), Basic("C"), Basic("D")})).Text());
        mDir.Write(folder + "/FaultTreeRules.xml", RuleXml("Tag").EventRule("A", {Single("counted")}).EventRule("B", {Single("left")})
            .EventRule("C", {Single("copied")}).EventRule("D", {Single("logged")})
            .Rule(asked("counted", sql, "")).Rule(asked("left", "select count(*) as n from " + other + " where 1", ""))
            .Rule(ofCopies).Rule(AlarmRuleXml("logged", {AlarmIdXml("", event, {TimeXml("duration", "1", "1")})}))
            .CommonPart({table("T"), table("ONLY_" + folder), copies}).Text());
    }

    std::string Text(const DetectionReport& report) const
    {
        std::string text = report.failure ? "failure " + (CodeWord(report.failure->code) + std::string("\n")) : "";
        for (const diagnosis::Warning& warning : report.warnings) {
            text += CodeWord(warning.code) + std::string(": ") + warning.message + "\n";
        }
        for (const diagnosis::TreeReport& tree : report.trees) {
            for (const auto& cause : tree.result->mRootCauseResults) {
                text += cause->mNode->mId + " ";
            }
            for (const auto& open : tree.verdict.open) {
                text += "open " + open.detail + " ";
            }
        }
        return text + report.moment;
    }

    std::vector<std::string> Together(const std::vector<std::string>& rules) const
    {
        std::vector<std::string> texts;
        for (const DetectionReport& report : RunDetections({"b", mDir.Path("b")}, {}, Paths(rules))) {
            texts.push_back(Text(report));
        }
        return texts;
    }
    std::vector<std::string> OneByOne(const std::vector<std::string>& rules) const
    {
        std::vector<std::string> texts;
        for (const std::string& folder : Paths(rules)) {
            DetectionOptions options;
            options.overrides.rules = folder;
            texts.push_back(Text(RunDetection({"b", mDir.Path("b")}, options)));
        }
        return texts;
    }
    std::vector<std::string> Paths(const std::vector<std::string>& rules) const
    {
        std::vector<std::string> paths;
        for (const std::string& folder : rules) {
            paths.push_back(mDir.Path(folder));
        }
        return paths;
    }

    TempDir mDir;
};

TEST_F(DetectionsTest, EachAnswersAsIfItRanAlone)
{
    const std::vector<std::string> rules = {"old", "new", "old", "new", "new"};
    const auto together = Together(rules);
    EXPECT_EQ(together, OneByOne(rules));
    EXPECT_THAT(together.front(), testing::HasSubstr("A C D "));
}

// Building a derived table leaves an empty log where there is none.
TEST_F(DetectionsTest, AMissingLogIsMissingForEach)
{
    std::filesystem::remove(mDir.Path(LOG));
    EXPECT_EQ(Together({"old", "new", "old"}), OneByOne({"old", "new", "old"}));
}

TEST_F(DetectionsTest, AnEarlierDerivedDatabaseIsThereForEach)
{
    EventLogBuilder::Run(mDir.Write(DERIVED, ""), "CREATE TABLE ONLY_new (occurrence_time); INSERT INTO ONLY_new VALUES (1716206001);"
        "CREATE TABLE ONLY_old AS SELECT * FROM ONLY_new");
    EXPECT_EQ(Together({"old", "new", "old"}), OneByOne({"old", "new", "old"}));
}

TEST_F(DetectionsTest, ABundleThatCannotBeEnteredFailsForEach)
{
    mDir.Write("b/bundle.json", "{");
    EXPECT_EQ(Together({"old", "new"}), OneByOne({"old", "new"}));
}

TEST_F(DetectionsTest, ARuleSetThatCannotBeUsedCostsNoOther)
{
    mDir.Write("bad/FaultTrees.xml", "<x");
    mDir.Write("bad/FaultTreeRules.xml", "<x/>");
    const std::vector<std::string> rules = {"bad", "new", "bad", "old"};
    EXPECT_EQ(Together(rules), OneByOne(rules));
}

TEST_F(DetectionsTest, ABundleWithoutAMomentHasOneForAll)
{
    mDir.Write("b/bundle.json", R"({"detectScene": 1, "treeTag": "Tag"})");
    const auto reports = RunDetections({"b", mDir.Path("b")}, {}, Paths({"old", "new"}));
    EXPECT_EQ(reports.at(0).moment, reports.at(1).moment);
}

} // namespace
