#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>

#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/value.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

constexpr char TREES[] = "rules/FaultTrees.xml";
constexpr char RULES[] = "rules/FaultTreeRules.xml";
constexpr char BUNDLE[] = "bundle.json";
constexpr char LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char REPAIRS[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db";
constexpr char PANEL_A[] = "device/data/panel/panel_a.db";
constexpr char PANEL_B[] = "device/data/panel/panel_b.zip";
constexpr char CHARGE[] = "device/sys/class/power_supply/BAT0/charge_full";
constexpr char DESIGN[] = "device/sys/class/power_supply/BAT0/charge_full_design";

/// One slip in the laptop's rule set or bundle, or damage to its data: the first `from` behind `after` becomes `to`.
struct Mistake {
    const char* name;
    const char* file;
    const char* after;
    const char* from;
    const char* to;
};
void PrintTo(const Mistake& mistake, std::ostream* out) { *out << mistake.name; }

/// What a detection answered, as far as a mistake could change it.
struct Answer {
    bool isUsable = false;
    std::map<std::string, std::string> causes;
    std::set<std::string> undecided;
    std::set<std::string> warnings;
};

class MistakenLaptopTest : public testing::Test {
protected:
    void SetUp() override
    {
        PrepareLaptop("laptop");
        // Nothing is left open, so that whatever is told is told of the mistake.
        const std::string bundle = mDir.Read("laptop/bundle.json");
        const auto answers = bundle.find("\"codeAnswers\"");
        mDir.Write("laptop/bundle.json", bundle.substr(0, answers) + R"("codeAnswers": {
            "{\"test\": \"speaker\"}": false, "{\"test\": \"pixel\"}": true, "{\"test\": \"keyboard\"}": false,
            "{\"test\": \"touchpad\"}": false}})");
        Replace(RULES, "battery_wear\" ", "deviceType=\"laptop\"", "blackProducts=\"LT-13\"");
    }

    void Replace(const std::string& name, const std::string& after, const std::string& from, const std::string& to) const
    {
        std::string text = mDir.Read("laptop/" + name);
        const auto at = text.find(from, text.find(after));
        if (at != std::string::npos) {
            mDir.Write("laptop/" + name, text.replace(at, from.size(), to));
        }
    }

    static Answer Detect()
    {
        const std::string out = RunArborist({"detect", "--strict", "--json", "laptop"}).out;
        Json::Value report;
        const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
        EXPECT_TRUE(reader->parse(out.data(), out.data() + out.size(), &report, nullptr)) << out;
        Answer answer;
        answer.isUsable = report["ok"].asBool();
        for (const Json::Value& warning : report["warnings"]) {
            answer.warnings.insert(warning["message"].asString());
        }
        for (const Json::Value& tree : report["results"]) {
            const std::string id = tree["treeId"].asString();
            for (const Json::Value& cause : tree["rootCauses"]) {
                answer.causes[id] += cause["id"].asString() + " ";
            }
            if (tree["verdict"].asString() == "undecided" || !tree["complete"].asBool()) {
                answer.undecided.insert(id);
            }
        }
        return answer;
    }

    TempDir mDir;
};

class MistakeTest : public MistakenLaptopTest, public testing::WithParamInterface<Mistake> {};

TEST_P(MistakeTest, IsToldByAWarningOrAVerdict)
{
    const Mistake& mistake = GetParam();
    const Answer sound = Detect();
    ASSERT_TRUE(sound.isUsable);
    ASSERT_FALSE(sound.causes.empty());
    ASSERT_TRUE(sound.undecided.empty()) << *sound.undecided.begin();
    const std::string before = mDir.Read("laptop/" + std::string(mistake.file));
    Replace(mistake.file, mistake.after, mistake.from, mistake.to);
    ASSERT_NE(mDir.Read("laptop/" + std::string(mistake.file)), before) << "nothing to mistake";
    const Answer wrong = Detect();
    const bool isTold = !wrong.isUsable || wrong.warnings != sound.warnings || wrong.undecided != sound.undecided;
    const bool isChanged = !wrong.isUsable || wrong.causes != sound.causes;
    EXPECT_TRUE(isTold) << (isChanged ? "changes an answer" : "changes nothing");
    RecordProperty("changesAnAnswer", isChanged ? "yes" : "no");
}

INSTANTIATE_TEST_SUITE_P(Trees, MistakeTest, testing::Values(
    Mistake{"GateThatDoesNotClose", TREES, "CHARGING_UNSTABLE", "<And-Gate>", "<and-Gate>"},
    Mistake{"EventWithoutRules", TREES, "", "<ID>BATTERY_WORN", "<ID>BATTERY_WORM"},
    Mistake{"SlashInAnId", TREES, "", "<ID>BATTERY_WORN", "<ID>BATTERY/WORN"},
    Mistake{"TabInAnId", TREES, "", "<ID>BATTERY_WORN", "<ID>\tBATTERY_WORN"},
    Mistake{"EmptyId", TREES, "", "<ID>BATTERY_WORN", "<ID>"},
    Mistake{"TreeWithoutVersion", TREES, "LAPTOP_POWER", " version=\"1\"", ""},
    Mistake{"TreeWithoutType", TREES, "LAPTOP_POWER", " type=\"device\"", ""},
    Mistake{"UnclosedElement", TREES, "BATTERY_WORN", "</Basic-Event>", ""}), CaseName());

INSTANTIATE_TEST_SUITE_P(Bindings, MistakeTest, testing::Values(
    Mistake{"BlankBehindAnId", RULES, "", "<ID>BATTERY_WORN</ID>", "<ID>BATTERY_WORN </ID>"},
    Mistake{"RuleNameThatNoRuleHas", RULES, "", ">battery_wear<", ">battery_wears<"},
    Mistake{"BlankInARuleName", RULES, "", ">battery_wear<", ">battery_wear <"},
    Mistake{"UnknownAlternative", RULES, "", "type=\"singleRule\"", "type=\"singelRule\""},
    Mistake{"AlternativeWithoutAType", RULES, "", " type=\"singleRule\"", ""},
    Mistake{"GroupWithAnUnknownRule", RULES, "", ">module_errors_b1<", ">module_errors_b2<"},
    Mistake{"SectionInLowerCase", RULES, "", "<EventRules>\n    <Laptop>", "<EventRules>\n    <Laptop/><Laptops/><Laptop>"},
    Mistake{"SecondEntryOfAnEvent", RULES, "", "<Event>\n        <ID>CHARGE_LOST</ID>",
        "<Event><ID>BATTERY_WORN</ID></Event><Event>\n        <ID>CHARGE_LOST</ID>"},
    Mistake{"RuleWithoutAName", RULES, "", " name=\"battery_wear\"", ""},
    Mistake{"RuleWithoutScene", RULES, "battery_wear\" ", " detectScene=\"1\"", ""}), CaseName());

INSTANTIATE_TEST_SUITE_P(NodeRules, MistakeTest, testing::Values(
    Mistake{"MissingNode", RULES, "battery_wear\" ", "charge_full\"", "charge_ful\""},
    Mistake{"FormulaNameThatIsNone", RULES, "battery_wear\" ", "100 * FULL /", "100 * FUL /"},
    Mistake{"UnbalancedFormula", RULES, "battery_wear\" ", "100 * FULL / DESIGN", "100 * (FULL / DESIGN"},
    Mistake{"ResultThatNoParameterHas", RULES, "battery_wear\" ", "ret=\"PERCENT\"", "ret=\"PER_CENT\""},
    Mistake{"UnknownComparison", RULES, "battery_wear\" ", "<gt><id>percent</id><value>0</value></gt>",
        "<more><id>percent</id><value>0</value></more>"},
    Mistake{"ThresholdThatIsNoNumber", RULES, "battery_wear\" ", "<value>60<", "<value>sixty<"},
    Mistake{"TestOfAnUnknownParameter", RULES, "battery_wear\" ", "<lt><id>percent<", "<lt><id>per_cent<"},
    Mistake{"UnknownType", RULES, "battery_wear\" ", "\"PERCENT\" type=\"double\"", "\"PERCENT\" type=\"decimal\""},
    Mistake{"UnknownLogic", RULES, "battery_wear\" ", "multiple_logic", "multiple_logics"},
    Mistake{"FormulaWithoutType", RULES, "battery_wear\" ", " type=\"formula\"", ""},
    Mistake{"NodeThatNoParameterHas", RULES, "battery_wear\" ", "param=\"FULL\"", "param=\"FUL\""},
    Mistake{"NoNodes", RULES, "flash_life\" ", "<nodeInfo param=\"LIFE\" path=\"/sys/block/mmcblk0/device/life_time\"/>", ""},
    Mistake{"NoCondition", RULES, "flash_life\" ",
        "<condition><or type=\"single_logic\"><ge><id>life</id><value>10</value></ge></or></condition>", ""},
    Mistake{"ComparisonInCapitals", RULES, "flash_life\" ", "<ge><id>life</id><value>10</value></ge>",
        "<GE><id>life</id><value>10</value></GE>"}), CaseName());

INSTANTIATE_TEST_SUITE_P(AlarmRules, MistakeTest, testing::Values(
    Mistake{"OnlyTheFirstId", RULES, "charge_lost\" ", "Eventid_Max", "Eventid_Min"},
    Mistake{"IdThatIsNoNumber", RULES, "charge_lost\" ", "931001001", "x931001001"},
    Mistake{"UnknownWindow", RULES, "charge_lost\" ", "\"duration\"", "\"durations\""},
    Mistake{"WindowWithoutNumbers", RULES, "charge_lost\" ", " period=\"30\" threshold=\"3\"", ""},
    Mistake{"ThresholdOfAWindowThatIsNoNumber", RULES, "write_errors_daily\" ", "threshold=\"3\"", "threshold=\"three\""},
    Mistake{"PeriodThatIsNoNumber", RULES, "keys_bounce\" ", "period=\"30\"", "period=\"month\""},
    Mistake{"TestsOfAnUnknownKind", RULES, "module_errors_b1\" ", "param_eventid", "param_event"},
    Mistake{"TestOfAParameterThatIsNotThere", RULES, "module_errors_b1\" ", "<eq><id>slot<", "<eq><id>slots<"},
    Mistake{"NoItems", RULES, "charge_lost\" ",
        "<alarmId Eventid_Max=\"931001001\" BeginFlag=\"1\"><time type=\"duration\" period=\"30\" threshold=\"3\"/></alarmId>",
        ""}), CaseName());

INSTANTIATE_TEST_SUITE_P(CommandRules, MistakeTest, testing::Values(
    Mistake{"SqlThatFails", RULES, "programs_killed\" ", "from MEMORY_EVENTS", "from MEMORY_EVENT"},
    Mistake{"UnknownCommonPart", RULES, "programs_killed\" ", "<commonPartName>MEMORY_EVENTS", "<commonPartName>MEMORY"},
    Mistake{"NoSql", RULES, "programs_killed\" ", "AnalysisMethod type=\"SQL\"", "AnalysisMethod type=\"Sql\""},
    Mistake{"SeveralRows", RULES, "panel_uneven\" ", "select zones from uneven", "select zones from uneven, zones"},
    Mistake{"UnknownDatabases", RULES, "panel_uneven\" ", "<defDBName>PANEL_HALVES", "<defDBName>PANELS"},
    Mistake{"UnknownThreshold", RULES, "memory_too_small\" ", "<commonPartParamId>most_swap", "<commonPartParamId>most"},
    Mistake{"PatternOfNoFile", RULES, "", "panel_[ab]", "panels_[ab]"},
    Mistake{"PatternThatIsNone", RULES, "", "panel_[ab]", "panel_[ab"}), CaseName());

INSTANTIATE_TEST_SUITE_P(Bundles, MistakeTest, testing::Values(
    Mistake{"NoVersionName", BUNDLE, "", "\"VersionName\": \"4.1\"", "\"VersionName\": \"\""},
    Mistake{"VersionNameThatTheLogLacks", BUNDLE, "", "\"VersionName\": \"4.1\"", "\"VersionName\": \"14.1\""},
    Mistake{"DeviceRootThatIsTheMachine", BUNDLE, "", "\"DeviceRootDir\": \"device\"", "\"DeviceRootDir\": \"/\""},
    Mistake{"EmptyDeviceRoot", BUNDLE, "", "\"DeviceRootDir\": \"device\"", "\"DeviceRootDir\": \"\""},
    Mistake{"EmptyDataRoot", BUNDLE, "", "\"ProgramDataDir\": \"programdata\"", "\"ProgramDataDir\": \"\""},
    Mistake{"DataRootOutsideOfTheBundle", BUNDLE, "", "\"ProgramDataDir\": \"programdata\"",
        "\"ProgramDataDir\": \"../programdata\""},
    Mistake{"RepeatedKey", BUNDLE, "", "{", "{\"detectScene\": 1,"},
    Mistake{"CommentInTheBundle", BUNDLE, "", "{", "{ // laptop\n"},
    Mistake{"NoFolderForDatabases", BUNDLE, "", "\"AppDatabaseDir\": \"databases\",", ""},
    Mistake{"NoLog", BUNDLE, "", "\"ProgramDataDir\": \"programdata\"", "\"ProgramDataDir\": \"programs\""},
    Mistake{"NoDevice", BUNDLE, "", "\"DeviceRootDir\": \"device\"", "\"DeviceRootDir\": \"devices\""},
    Mistake{"NoMemorySize", BUNDLE, "", "\"RamSize\": \"8\"", "\"RamSize\": \"\""},
    Mistake{"NoProduct", BUNDLE, "", "\"Product\": \"LT-14\"", "\"Product\": \"\""},
    Mistake{"DeviceKeyInLowerCase", BUNDLE, "", "\"Product\"", "\"product\""},
    Mistake{"SettingThatNothingReads", BUNDLE, "", "\"VersionName\"", "\"Version\""},
    Mistake{"KeyThatNothingReads", BUNDLE, "", "\"now\"", "\"moment\""},
    Mistake{"MomentThatIsNone", BUNDLE, "", "2024-05-20 12:00:00", "2024-05-32 12:00:00"},
    Mistake{"TimeZoneThatIsNone", BUNDLE, "", "CET-1CEST,M3.5.0,M10.5.0/3", "Centre"},
    Mistake{"MomentBeforeTheEvents", BUNDLE, "", "2024-05-20", "2023-05-20"},
    Mistake{"AnswerToACodeRuleThatIsNone", BUNDLE, "", "\\\"test\\\": \\\"pixel", "\\\"test\\\": \\\"pixels"},
    Mistake{"AnswerThatIsNone", BUNDLE, "pixel", "true", "\"yes\""},
    Mistake{"FolderOfRulesThatIsNotThere", BUNDLE, "", "{", "{\"ruleFileDir\": \"rule\","},
    Mistake{"FolderOutsideOfTheBundle", BUNDLE, "", "\"device\",", "\"../device\","},
    Mistake{"OtherTag", BUNDLE, "", "\"treeTag\": \"Laptop\"", "\"treeTag\": \"Laptops\""},
    Mistake{"OtherScene", BUNDLE, "", "\"detectScene\": 1", "\"detectScene\": 2"}), CaseName());

// Each place of what the rules read, with bytes that are not what they were.
INSTANTIATE_TEST_SUITE_P(DamagedData, MistakeTest, testing::Values(
    Mistake{"LogThatIsNoDatabase", LOG, "", "SQLite format 3", "SQLite format 9"},
    Mistake{"LogWithoutItsTable", LOG, "", "CREATE TABLE event_info (", "CREATE TABLE event_logs ("},
    Mistake{"LogWithoutItsVersions", LOG, "", "CREATE TABLE event_version", "CREATE TABLE event_versios"},
    Mistake{"TestedExtraThatIsNoJson", LOG, "", "{\"DIMM\": \"B1\"", "[\"DIMM\": \"B1\""},
    Mistake{"WeightThatIsNoJson", LOG, "", "{\"COUNT\": \"65\"}", "[\"COUNT\": \"65\"}"},
    Mistake{"ColumnOfATableThatIsNoJson", LOG, "", "{\"SWAP_MB\": 5120", "[\"SWAP_MB\": 5120"},
    Mistake{"RepairsThatAreNoDatabase", REPAIRS, "", "SQLite format 3", "SQLite format 9"},
    Mistake{"ArchiveWhoseEntryHasABrokenHead", PANEL_B, "", "PK\3\4", "KP\3\4"},
    Mistake{"ArchiveWhoseListIsBroken", PANEL_B, "", "PK\1\2", "KP\1\2"},
    Mistake{"ArchiveWithoutAnEnd", PANEL_B, "", "PK\5\6", "KP\5\6"},
    Mistake{"CopyThatIsNoDatabase", PANEL_A, "", "SQLite format 3", "SQLite format 9"},
    Mistake{"CopyWithoutTheTable", PANEL_A, "", "CREATE TABLE zones", "CREATE TABLE zonen"},
    Mistake{"NodeThatIsNoNumber", CHARGE, "", "", "full "},
    Mistake{"NodeWithoutAValue", DESIGN, "", "5000000", " "}), CaseName());

// Links in the place of something in the bundle. Each leads to what is there, so that only the place is wrong.
struct LinkMistake {
    const char* name;
    const char* place;
};
void PrintTo(const LinkMistake& mistake, std::ostream* out) { *out << mistake.name; }
class LinkOutOfTheBundle : public testing::TestWithParam<LinkMistake> {};

TEST_P(LinkOutOfTheBundle, IsToldByAWarningOrAFailure)
{
    const TempDir dir;
    PrepareLaptop("laptop");
    const std::filesystem::path place = dir.Path("laptop/" + std::string(GetParam().place));
    ASSERT_TRUE(std::filesystem::exists(place));
    std::filesystem::rename(place, dir.Path("outside"));
    std::filesystem::create_symlink(dir.Path("outside"), place);
    const ProcessResult result = RunArborist({"detect", "--strict", "--json", "laptop"});
    EXPECT_NE(result.out.find("outside"), std::string::npos) << result.out;
    EXPECT_NE(result.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Table, LinkOutOfTheBundle, testing::Values(LinkMistake{"Device", "device"},
    LinkMistake{"Data", "programdata"}, LinkMistake{"FolderOfData", "programdata/Comms/Lumbra/zxdetectrepair"},
    LinkMistake{"Log", LOG}, LinkMistake{"Repairs", REPAIRS}, LinkMistake{"Rules", "rules"}), CaseName());

// A link on the device leads nowhere outside of it: what it hides is told as missing.
TEST_F(MistakenLaptopTest, NodeThatIsALinkToThisMachineIsTold)
{
    mDir.Write("node", mDir.Read("laptop/" + std::string(CHARGE)));
    const Answer sound = Detect();
    std::filesystem::remove("laptop/" + std::string(CHARGE));
    std::filesystem::create_symlink(mDir.Path("node"), "laptop/" + std::string(CHARGE));
    EXPECT_NE(Detect().undecided, sound.undecided);
}

} // namespace
