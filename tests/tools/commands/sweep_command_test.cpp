#include <map>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// 2024-05-20 12:00:00 in UTC, the moment of the bundle.
constexpr std::int64_t NOW = 1716206400;
constexpr std::int64_t DAY = 86400;

std::vector<Json::Value> Lines(const std::string& text)
{
    std::vector<Json::Value> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(ParsedJson(line));
    }
    return lines;
}

// What a detection as of a moment says of each tree, and of its root causes.
std::map<std::string, std::string> DetectAsOf(const std::string& bundle, std::int64_t moment)
{
    const auto result = RunArborist({"detect", "--json", "--as-of", std::to_string(moment), bundle});
    std::map<std::string, std::string> told;
    const Json::Value report = ParsedJson(result.out);
    for (const Json::Value& tree : report["results"]) {
        std::set<std::string> causes;
        for (const Json::Value& cause : tree["rootCauses"]) {
            causes.insert(cause["id"].asString());
        }
        std::string& text = told[tree["treeId"].asString()];
        text = tree["verdict"].asString();
        for (const std::string& cause : causes) {
            text += " " + cause;
        }
    }
    return told;
}

// The same by the intervals of a sweep.
std::map<std::string, std::string> SweptAt(const std::vector<Json::Value>& lines, std::int64_t moment)
{
    std::map<std::string, std::string> told;
    std::map<std::string, std::set<std::string>> causes;
    for (const Json::Value& line : lines) {
        if (line["kind"] != "interval" || line["from"].asInt64() > moment || line["until"].asInt64() < moment) {
            continue;
        }
        if (line["of"] == "tree") {
            told[line["tree"].asString()] = line["word"].asString();
        } else if (line["of"] == "cause" && line["state"] == "true") {
            causes[line["tree"].asString()].insert(line["cause"].asString());
        }
    }
    for (const auto& [tree, ids] : causes) {
        for (const std::string& id : ids) {
            told[tree] += " " + id;
        }
    }
    return told;
}

class SweepCommandTest : public testing::Test {
protected:
    // Three drops, an hour apart; three in seven days are a fault.
    void WriteDrops()
    {
        WriteDropsBundle(mDir, "b");
        EventLogBuilder().Rows({{NOW - 3600, 1001, "", ""}, {NOW, 1001, "", ""}, {NOW + 3600, 1001, "", ""}})
            .WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    }

    static ProcessResult Sweep(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"sweep", "b", "--tz", "UTC"});
        return RunArborist(arguments);
    }

    TempDir mDir;
};

TEST_F(SweepCommandTest, TellsWhenEachTreeAndRuleWasFirstTrueForHowLongAndHowOften)
{
    WriteDrops();
    const auto result = Sweep({"--until", "2024-06-01"});
    EXPECT_EQ(result.out,
        "b: as of every second from 2024-05-20 11:00:00 to 2024-06-01 23:59:59; 2 moments at which an answer may change\n"
        "                  first true           how long     how often  not judged  rests on\n"
        "tree T            2024-05-20 13:00:00  6d 22:00:01  1          -           log\n"
        "  cause DROPS     2024-05-20 13:00:00  6d 22:00:01  1          -           log\n"
        "rules\n"
        "  drops of DROPS  2024-05-20 13:00:00  6d 22:00:01  1          -           log\n");
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 0);
}

TEST_F(SweepCommandTest, UnlessToldOtherwiseItGoesFromTheFirstRowToNowOrTheLastRow)
{
    WriteDrops();
    EXPECT_THAT(Sweep().out, HasSubstr("from 2024-05-20 11:00:00 to 2024-05-20 13:00:00;"));
    EventLogBuilder().Rows({{NOW - DAY, 1001, "", ""}}).WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    EXPECT_THAT(Sweep().out, HasSubstr("from 2024-05-19 12:00:00 to 2024-05-20 12:00:00;"));
}

TEST_F(SweepCommandTest, OneTreeOrOneRuleIsToldAlone)
{
    WriteDrops();
    EXPECT_THAT(Sweep({"--tree", "T"}).out, AllOf(HasSubstr("tree T"), Not(HasSubstr("rules"))));
    EXPECT_THAT(Sweep({"--rule", "drops"}).out, AllOf(HasSubstr("drops of DROPS"), Not(HasSubstr("tree"))));
    const auto unknown = Sweep({"--tree", "TT"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.err, HasSubstr("has no tree \"TT\""));
    EXPECT_THAT(Sweep({"--rule", "drop"}).err, HasSubstr("no event asks a rule \"drop\"; did you mean \"drops\"?"));
}

TEST_F(SweepCommandTest, ATreeOrRuleThatIsNotThereIsRefusedBeforeTheSweep)
{
    WriteDrops();
    EXPECT_EQ(Sweep({"--tree", "TT", "--log-level", "debug"}).err, "arborist: b: has no tree \"TT\" [no_such_tree]\n");
    EXPECT_EQ(Sweep({"--rule", "ddd", "--log-level", "debug"}).err, "arborist: b: no event asks a rule \"ddd\" [no_such_rule]\n");
}

TEST_F(SweepCommandTest, ColumnsAreAsWideAsTheirCharacters)
{
    WriteDrops();
    std::string trees = mDir.Read("b/rules/FaultTrees.xml");
    trees.replace(trees.find("\"T\""), 3, "\"\u00C4\u00D6\u00DC\"");
    mDir.Write("b/rules/FaultTrees.xml", trees);
    EXPECT_THAT(Sweep().out, HasSubstr("\ntree \u00C4\u00D6\u00DC          2024"));
}

TEST_F(SweepCommandTest, WhatRestsOnTheDateOfARepairIsMarkedInTableAndLines)
{
    WriteDrops();
    RunArborist({"repair", "record", "b", "R", "--now", std::to_string(NOW + 1800)});
    const auto result = Sweep({"--until", "2024-06-01"});
    EXPECT_THAT(result.out, AllOf(HasSubstr("tree T            never       -         -          -           log, repair date\n"),
        HasSubstr("  drops of DROPS  never       -         -          -           log, repair date\n"),
        HasSubstr("\nrepair date: nothing before a repair counts;")));
    const auto lines = Lines(Sweep({"--json"}).out);
    for (std::size_t line = 1; line < lines.size(); ++line) {
        EXPECT_EQ(lines[line]["restsOn"][0], "log");
        EXPECT_EQ(lines[line]["restsOn"][1], "repair_date");
    }
    EXPECT_THAT(Sweep({"--from", "-5", "--until", "5"}).out, Not(HasSubstr("repair date")));
    // Neither a repair after the last moment nor one from before each window moves a start.
    EXPECT_THAT(Sweep({"--until", std::to_string(NOW)}).out, Not(HasSubstr("repair date")));
    EXPECT_THAT(Sweep({"--from", "2024-06-01", "--until", "2024-06-02"}).out, Not(HasSubstr("repair date")));
}

TEST_F(SweepCommandTest, WhatHasNoHistoryIsMarkedInTableAndLines)
{
    WriteHotBundle(mDir, "b");
    const auto result = Sweep({"--from", "2024-06-01", "--until", "2024-06-02"});
    EXPECT_THAT(result.out, AllOf(HasSubstr("tree T "), HasSubstr("  cause HOT "), HasSubstr("  -           captured\n"),
        HasSubstr("\ncaptured: data without a history, taken for all moments as they were captured\n")));
    for (const Json::Value& line : Lines(Sweep({"--json"}).out)) {
        EXPECT_EQ(line["kind"] == "sweep" || line["restsOn"][0] == "captured", true);
    }
}

TEST_F(SweepCommandTest, TreesOfOneIdAreToldApart)
{
    WriteDrops();
    std::string trees = mDir.Read("b/rules/FaultTrees.xml");
    const auto start = trees.find("<Fault-Tree ");
    const std::string tree = trees.substr(start, trees.find("</Fault-Tree>") + 13 - start);
    mDir.Write("b/rules/FaultTrees.xml", trees.insert(start, tree));
    EXPECT_THAT(Sweep().out, AllOf(HasSubstr("tree T (1 of 2) "), HasSubstr("tree T (2 of 2) ")));
    std::set<std::pair<std::string, int>> numbers;
    for (const Json::Value& line : Lines(Sweep({"--json", "--tree", "T"}).out)) {
        if (line["kind"] == "interval") {
            numbers.emplace(line["of"].asString(), line["treeNumber"].asInt());
        }
    }
    EXPECT_THAT(numbers, ElementsAre(std::pair("cause", 1), std::pair("cause", 2), std::pair("tree", 1), std::pair("tree", 2)));
    EXPECT_EQ(Lines(Sweep({"--json", "--rule", "drops"}).out)[1]["treeNumber"], 0);
}

TEST_F(SweepCommandTest, TheMachineAtHandIsSweptOnRequest)
{
    WriteHotBundle(mDir, "b");
    std::string rules = mDir.Read("b/rules/FaultTreeRules.xml");
    mDir.Write("machine", "80\n");
    rules.replace(rules.find("\"temperature\""), 13, "\"" + mDir.Path("machine") + "\"");
    mDir.Write("b/rules/FaultTreeRules.xml", rules);
    EXPECT_THAT(Sweep().out, Not(HasSubstr("cause HOT")));
    EXPECT_THAT(Sweep({"--live"}).out, HasSubstr("cause HOT"));
}

TEST_F(SweepCommandTest, AnEndBeforeTheBeginningIsWrongUse)
{
    WriteDrops();
    const auto result = Sweep({"--from", "2024-05-20", "--until", "2024-05-19"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("the sweep would end at 2024-05-19 23:59:59, before it begins"));
}

TEST_F(SweepCommandTest, AMomentThatTheClocksSkipIsWrongUse)
{
    WriteDrops();
    const auto result =
        RunArborist({"sweep", "b", "--tz", "CET-1CEST,M3.5.0,M10.5.0/3", "--from", "2024-03-31 02:30:00"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("the moment \"2024-03-31 02:30:00\" does not exist"));
}

TEST_F(SweepCommandTest, AStatementThatReadsTheClockIsNamedAndNotJudged)
{
    WriteDrops();
    WriteDropsTableRules(mDir, "b", "select count(*) as n from DROPS_TABLE where LOST < strftime('%s', 'now')");
    const auto result = Sweep({"--strict"});
    EXPECT_THAT(result.err,
        HasSubstr("the rule \"r\" of \"DROPS\" is not swept: its statement reads the clock"));
    EXPECT_THAT(result.out, AllOf(HasSubstr("02:00:01 (reads_clock)"), HasSubstr("02:00:01 (not_swept)")));
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(Sweep().status, 0);
}

TEST_F(SweepCommandTest, AStatementOnExternalDatabasesThatReadsTheClockIsNamed)
{
    WriteDrops();
    const auto errorsOf = [this](const std::string& statement, const std::string& made) {
        WriteDropsTableRules(mDir, "b", statement);
        std::string rules = mDir.Read("b/rules/FaultTreeRules.xml");
        rules.insert(rules.find("<queryReturnParam>"), "<referenceDefDB type=\"singleDB\"><defDBName>x</defDBName></referenceDefDB>");
        rules.insert(rules.find("<thresholdsOrLumbraData"), "<defDBTable name=\"x\"><createTables><createNewTable "
            "tableName=\"made\"><sql>" + made + "</sql></createNewTable></createTables></defDBTable>");
        mDir.Write("b/rules/FaultTreeRules.xml", rules);
        return Sweep().err;
    };
    const std::string words = "is not swept: its statement reads the clock";
    const std::string plain = "select count(*) as n from made";
    EXPECT_THAT(errorsOf(plain, "create table made(n)"), Not(HasSubstr("is not swept")));
    EXPECT_THAT(errorsOf("select strftime('%s', 'now') as n", "create table made(n)"), HasSubstr(words));
    EXPECT_THAT(errorsOf(plain, "create table made as select random() as n"), HasSubstr(words));
    EXPECT_THAT(errorsOf("select n as occurrence_time from (select a * 2 occurrence_time from made)", "create table made(n)"),
        Not(HasSubstr("is not swept")));
}

TEST_F(SweepCommandTest, DerivedTablesAreBuiltForALimitedNumberOfMoments)
{
    WriteDrops();
    WriteDropsTableRules(mDir, "b", "select count(*) as n from DROPS_TABLE");
    EXPECT_THAT(Sweep({"--table-moments", "2"}).out,
        AllOf(HasSubstr("2024-05-20 13:00:00"), HasSubstr("rules of DROPS on derived tables asked 3 times")));
    EXPECT_THAT(Sweep({"--table-moments", "1"}).err,
        HasSubstr("is not swept: its derived tables change at 2 moments; --table-moments allows more"));
}

TEST_F(SweepCommandTest, WarnsAsADetectionDoesEachOnce)
{
    WriteCodeBundle(mDir, "c", {"a"});
    const auto result = RunArborist({"sweep", "c", "--strict"});
    EXPECT_THAT(result.err, HasSubstr("has no recorded answer, and no --code-runner was given"));
    EXPECT_THAT(result.err, Not(HasSubstr("times)")));
    EXPECT_EQ(result.status, 4);
    WriteDropsBundle(mDir, "b");
    EXPECT_THAT(Sweep().err, AllOf(HasSubstr("there is no event log"), Not(HasSubstr("can't be told"))));
}

TEST_F(SweepCommandTest, ALogWhoseEndsCantBeReadIsWarnedOf)
{
    WriteDropsBundle(mDir, "b");
    mDir.Write(std::string("b") + LOG_OF_BUNDLE, std::string(8192, 'x'));
    const std::string words = "the first and the last row of the event log can't be told";
    EXPECT_THAT(Sweep().err, HasSubstr(words));
    EXPECT_THAT(Sweep({"--from", "2024-05-01", "--until", "2024-05-02"}).err,
        AllOf(Not(HasSubstr(words)), HasSubstr("the event log can't be read to its end")));
}

TEST_F(SweepCommandTest, ABundleThatCantBeSweptSaysWhy)
{
    const auto result = RunArborist({"sweep", "nowhere"});
    EXPECT_EQ(result.out, "nowhere: NOT SWEPT\n");
    EXPECT_EQ(result.status, 4);
    const auto json = RunArborist({"sweep", "--json", "nowhere"});
    EXPECT_THAT(Violations(ParsedJson(PageOfDocs("sweep.schema.json")), ParsedJson(json.out)), IsEmpty());
}

TEST_F(SweepCommandTest, JsonLinesFollowTheSchemaAndHaveNoGap)
{
    WriteDrops();
    const Json::Value schema = ParsedJson(PageOfDocs("sweep.schema.json"));
    const auto lines = Lines(Sweep({"--json", "--until", "2024-06-01"}).out);
    ASSERT_EQ(lines.size(), 10U); // and three intervals of the tree, its cause and its rule
    std::int64_t next = lines[0]["from"].asInt64();
    for (const Json::Value& line : lines) {
        EXPECT_THAT(Violations(schema, line), IsEmpty());
        if (line["of"] == "tree") {
            EXPECT_EQ(line["from"].asInt64(), next);
            next = line["until"].asInt64() + 1;
        }
    }
    EXPECT_EQ(next, lines[0]["until"].asInt64() + 1);
    EXPECT_EQ(lines[1]["fromLocal"], "2024-05-20 11:00:00");
}

TEST_F(SweepCommandTest, ThePictureGoesIntoAFileBesideTheTable)
{
    WriteDrops();
    const auto result = Sweep({"--svg", "drops.svg"});
    EXPECT_THAT(result.out, HasSubstr("tree T"));
    EXPECT_THAT(mDir.Read("drops.svg"), AllOf(HasSubstr("<svg"), HasSubstr("<title>DROPS: true from 2024-05-20 13:00:00")));
}

TEST_F(SweepCommandTest, TheReportPageHasTheTimelinesOnRequest)
{
    WriteDrops();
    const std::vector<std::string> report{"report", "b", "--as-of", std::to_string(NOW + 3600), "--tz", "UTC"};
    EXPECT_THAT(RunArborist(report).out, Not(HasSubstr("id=\"sweep\"")));
    auto swept = report;
    swept.emplace_back("--sweep");
    EXPECT_THAT(RunArborist(swept).out, AllOf(HasSubstr("<section id=\"sweep\">"), HasSubstr(".timeline rect.true"),
        HasSubstr("<title>DROPS: true from 2024-05-20 13:00:00 to 2024-05-20 13:00:00</title>")));
}

TEST_F(SweepCommandTest, TheLaptopIsSweptToWhatDetectionsFindAtEachChangeAndASecondBefore)
{
    PrepareLaptop("laptop");
    const auto lines = Lines(RunArborist({"sweep", "--json", "laptop"}).out);
    std::set<std::int64_t> moments;
    for (const Json::Value& line : lines) {
        if (line["of"] == "tree" || line["of"] == "cause") {
            moments.insert({line["from"].asInt64(), line["until"].asInt64()});
        }
    }
    EXPECT_GT(moments.size(), 15U);
    for (const std::int64_t moment : moments) {
        EXPECT_EQ(SweptAt(lines, moment), DetectAsOf("laptop", moment)) << moment;
    }
}

TEST_F(SweepCommandTest, ThePageHasTheTableOfTheLaptop)
{
    PrepareLaptop("laptop");
    const std::string page = PageOfDocs("sweep.md");
    const std::string fence = "```text\n";
    const auto start = page.find(fence) + fence.size();
    EXPECT_EQ(RunArborist({"sweep", "laptop"}).out, page.substr(start, page.find("```\n", start) - start));
}

} // namespace
