#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// What explanations tell of a rule beside its reason: a bundle whose tree "T" has the event "E" with the rule "r".
class ExplainEvidence : public testing::Test {
protected:
    void Write(RuleXml rules, const std::string& settings = "")
    {
        mDir.Write("b/bundle.json", BundleJson(R"(, "now": 1700000000, "tz": "UTC0")" + settings));
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("3").Tree("T", Or({Basic("E")})).Text());
        mDir.Write("b/rules/FaultTreeRules.xml", rules.EventRule("E", {Single("r")}).Text());
    }

    void WriteLog(const std::vector<LoggedRow>& rows) const
    {
        EventLogBuilder().Rows(rows).WriteTo(mDir.Path(std::string("b") + LOG_OF_BUNDLE));
    }

    static std::string Text() { return RunArborist({"explain", "--log-level", "none", "b"}).out; }
    static std::string Json()
    {
        const std::string json = RunArborist({"explain", "--json", "--log-level", "none", "b"}).out;
        static const Json::Value SCHEMA = ParsedJson(PageOfDocs("explain.schema.json"));
        EXPECT_THAT(Violations(SCHEMA, ParsedJson(json)), testing::IsEmpty());
        return json;
    }

    TempDir mDir;
};

// A rule that is put to copies of what "dbName" matches below "/data" and "/more".
RuleXml RuleOnCopies(const std::string& pattern)
{
    const auto folder = [](const char* path) {
        return Xml("dbPath").Attr("decompression", "false").Attr("type", "").Attr("value", path);
    };
    return RuleXml("Tag").CommonPart({Xml("defDBTable").Attr("name", "D")
        .Child(Xml("dbPaths").Child(folder("/data")).Child(folder("/more")))
        .Child(Xml("dbName").Attr("name", pattern))})
        .Rule(CommandRuleXml("r")
            .Child(Xml("referenceDefDB").Attr("type", "singleDB").TextChild("defDBName", "D"))
            .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
            .Child(AnalysisMethodXml("defDBSql", {Xml("sql").Text("select n from t")})));
}

TEST_F(ExplainEvidence, WhyNoDatabaseWasCopiedIsTold)
{
    const std::string none = "hits in 0 of 0 databases (D), 1 needed, 1 missing; ";
    Write(RuleOnCopies(".*\\.db"));
    mDir.MakeDir("b/device");
    EXPECT_THAT(Text(), HasSubstr(none + "no folder to search is there (/data, /more)\n"));
    EXPECT_THAT(Json(), HasSubstr(R"("missing": 1, "missingCopies": {"cause": "folder_missing", )"
                                  R"("folders": ["/data", "/more"], "pattern": ".*\\.db"}})"));
    mDir.MakeDir("b/device/data");
    EXPECT_THAT(Text(), HasSubstr(none + "no file lies below /data\n"));
    EXPECT_THAT(Json(), HasSubstr(R"("missingCopies": {"cause": "folder_empty", "folders": ["/data"])"));
    mDir.Write("b/device/data/app.sqlite", "");
    EXPECT_THAT(Text(), HasSubstr(none + "no file below /data matches the pattern \".*\\.db\"\n"));
    EXPECT_THAT(Json(), HasSubstr(R"("missingCopies": {"cause": "no_match", "folders": ["/data"])"));
    EventLogBuilder::Run(mDir.Path("b/device/data/app.db"), "create table t(n); insert into t values (1)");
    EXPECT_THAT(Text(), HasSubstr(none + "the setting AppDatabaseDir is empty\n"));
    EXPECT_THAT(Json(), HasSubstr(R"("missingCopies": {"cause": "setting_empty", "folders": ["/data"])"));
    Write(RuleOnCopies(".*\\.db"), R"(, "settings": {"AppDatabaseDir": "copies"})");
    EXPECT_THAT(Text(), AllOf(HasSubstr("hits in 0 of 1 database (D), 1 needed, 1 missing\n"), Not(HasSubstr("; no"))));
    EXPECT_THAT(Json(), Not(HasSubstr("missingCopies")));
}

TEST_F(ExplainEvidence, RowsThatARepairCutOffAreCounted)
{
    Write(RuleXml("Tag").Repair("E", {{"R", ""}})
        .Rule(AlarmRuleXml("r", {AlarmIdXml("7", "7", {TimeXml("latest", "7", "3")})})));
    WriteLog({{1700000000 - 500000, 7, "", ""}, {1700000000 - 400000, 7, "", ""}, {1700000000 - 100, 7, "", ""}});
    EXPECT_THAT(Text(), HasSubstr(": 3 rows; reached 3 of 3 rows\n"));
    EXPECT_THAT(Json(), Not(HasSubstr("rowsBeforeStart")));
    ASSERT_EQ(RunArborist({"repair", "record", "b", "R", "--now", "1699700000"}).status, 0);
    EXPECT_THAT(Text(), HasSubstr("(repair R), this version only: 1 row, 2 more cut off by the repair; reached 1 of 3 rows, 2 missing\n"));
    EXPECT_THAT(Json(), HasSubstr(R"("rowsFound": 1, "rowsBeforeStart": 2, "rowsOfOtherVersion": 0)"));
}

TEST_F(ExplainEvidence, WhereTheLastIdDecidesItsCountIsTold)
{
    const Xml tests = ConditionXml({MultipleLogicXml({TestXml("eq", "a", "1")})});
    const auto rules = [&tests](const char* last) {
        return RuleXml("Tag").Rule(AlarmRuleXml("r", {AlarmIdXml("7", last,
            {TimeXml("daily_peak", "7", "1"), ParamsXml({ParamXml("a", "A", "int")}), tests})
            .Attr("type", "param_eventid")}));
    };
    WriteLog({{1700000000 - 100, 7, "", R"({"A":1})"}, {1700000000 - 100, 8, "", R"({"A":2})"}});
    Write(rules("8"));
    EXPECT_THAT(Text(), AllOf(
        HasSubstr("rule r (alarm): FALSE window_short\n"),
        HasSubstr("2 rows, 1 failed the test; reached 0 by id 8 of 1 row, 1 missing; the last id alone decides\n"),
        HasSubstr("test A = 1 (int): 1 of 2 rows pass, 0 of the last id\n")));
    EXPECT_THAT(Json(), AllOf(
        HasSubstr(R"("reached": 0, "reachedById": 8, "measure": "rows", "lastIdDecides": true, "threshold": 1)"),
        HasSubstr(R"("rowsPassed": 1, "rowsPassedByLastId": 0)")));
    Write(rules("7"));
    EXPECT_THAT(Text(), AllOf(HasSubstr("reached 1 of 1 row\n"), Not(HasSubstr("alone"))))
        << "of one id there is nothing to say";
}

} // namespace
