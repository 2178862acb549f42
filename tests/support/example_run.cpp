#include "tests/support/example_run.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <regex>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "arborist/frame/repair.h"
#include "arborist/stores/repairs/reset_time_parser.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/time_util.h"
#include "tests/support/tree_notation.h"
#include "tests/support/event_log_builder.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t SECONDS_PER_DAY = 86400;
constexpr char TAG[] = "Laptop";

// The host's answers to code rules, in order; then always yes.
class Answers : public CodeRuleRunner {
public:
    explicit Answers(std::vector<std::string> answers) : mAnswers(std::move(answers)) {}

    bool RunCodeRule(
        std::vector<std::string>, std::vector<std::string>, std::vector<std::string>, const std::string&) override
    {
        return mNext >= mAnswers.size() || mAnswers[mNext++] == "yes";
    }

private:
    std::vector<std::string> mAnswers;
    std::size_t mNext = 0;
};

std::vector<std::string> SplitAt(const std::string& text, const std::string& separator)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (!text.empty() && start <= text.size()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        parts.push_back(text.substr(start, end - start));
        start = end + separator.size();
    }
    return parts;
}

std::pair<std::string, std::string> SplitOnce(const std::string& text, const std::string& separator)
{
    const std::size_t place = text.find(separator);
    return place == std::string::npos ? std::make_pair(text, std::string())
                                      : std::make_pair(text.substr(0, place), text.substr(place + separator.size()));
}

std::string WithLineEnds(const std::string& text)
{
    return std::regex_replace(text, std::regex(R"(\\n)"), "\n");
}

// Names a rule that doesn't name itself.
std::string NamedRule(const std::string& rule)
{
    static const std::regex start("^(<[A-Za-z]+)(?=[ />])");
    const bool isNamed = rule.find(" name=") < rule.find('>');
    return isNamed ? rule : std::regex_replace(rule, start, R"($1 name="r" detectScene="1")");
}

std::string Section(const std::string& name, const std::string& content)
{
    return "<" + name + "><" + TAG + ">" + content + "</" + TAG + "></" + name + ">";
}

std::string EventRule(const std::string& id, const std::string& rule)
{
    const std::string alternative = "<or type=\"singleRule\"><Rule><Rule-name>" + rule + "</Rule-name></Rule></or>";
    return "<Event><ID>" + id + "</ID>" + (rule.empty() ? "" : alternative) + "</Event>";
}

// A rule that calculates the formula of an example over its node files.
std::string FormulaRule(const PageExample& example)
{
    std::string nodes;
    std::string params;
    for (const std::string& node : SplitAt(example.First("node"), " | ")) {
        const std::string name = SplitOnce(node, " = ").first;
        nodes += "<nodeInfo param=\"" + name + "\" path=\"" + name + "\"/>";
        params += "<param id=\"" + name + "\" key=\"" + name + "\" type=\"string\"/>";
    }
    // Needs a node file, as a rule without one calculates nothing.
    return NamedRule("<nodeRule>" + nodes + "<nodeInfo param=\"other\" path=\"other\"/><params>" + params +
        "<param id=\"result\" key=\"result\" type=\"double\"/></params>" +
        "<logicExpression type=\"t\" ret=\"result\" express=\"" + example.First("formula") + "\"/></nodeRule>");
}

struct Comparison {
    std::string type;
    std::string observed;
    std::string word;
    std::string configured;

    explicit Comparison(const std::string& text)
    {
        static const std::regex form("^([a-z]+) (.*) (eq|ne|gt|ge|lt|le|in) (.*)$");
        std::smatch match;
        if (std::regex_match(text, match, form)) {
            type = match[1];
            observed = match[2];
            word = match[3];
            configured = match[4];
        }
    }

    std::string Rule() const
    {
        const std::string test = "<" + word + "><id>1</id><value>" + configured + "</value></" + word + ">";
        const std::string param = "<param id=\"1\" key=\"a\" type=\"" + type + "\"/>";
        return NamedRule("<nodeRule><nodeInfo param=\"a\" path=\"observed\"/><params>" + param +
            "</params><condition><or type=\"multiple_logic\"><and>" + test +
            "</and></or></condition></nodeRule>");
    }
};

LoggedRow RowOf(const std::smatch& match)
{
    LoggedRow row;
    row.event = std::stoll(match[1].str());
    row.extra = match[3];
    row.version = match[4];
    row.time = NOW - SECONDS_PER_DAY;
    if (match[5].matched) {
        row.time = TimeUtil::StrToTimeStamp(match[5].str() + " 12:00:00", "%Y-%m-%d %H:%M:%S");
    } else if (match[6].matched) {
        row.time = std::stoll(match[6].str());
    }
    return row;
}

void WriteLog(const PageExample& example)
{
    static const std::regex form(
        R"(^(\d+)(?: x(\d+))?(?: (\{.*\}))?(?: version (\S+))?(?: on (\d{4}-\d\d-\d\d)| at (\d+))?$)");
    EventLogBuilder log;
    for (const std::string& item : SplitAt(example.First("log"), " | ")) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(item, match, form)) << item;
        const int count = match[2].matched ? std::stoi(match[2].str()) : 1;
        for (int number = 0; number < count; ++number) {
            log.Row(RowOf(match));
        }
    }
    for (const std::string& sql : example.All("log sql")) {
        log.Sql(sql);
    }
    log.WriteTo(DevicePaths::EventLog());
}

// The first value of a query on a database file, or SQLite's message.
std::string AnswerOf(const std::string& path, const std::string& sql)
{
    sqlite3* connection = nullptr;
    std::string answer;
    if (sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_text(statement, 0) != nullptr) {
            answer = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        } else {
            answer = sqlite3_errmsg(connection);
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(connection);
    return answer;
}

std::string FilesIn(const std::string& folder)
{
    std::vector<std::string> names;
    if (std::filesystem::is_directory(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                names.push_back(entry.path().filename().string());
            }
        }
    }
    std::sort(names.begin(), names.end());
    std::string joined;
    for (const std::string& name : names) {
        joined += (joined.empty() ? "" : ", ") + name;
    }
    return joined;
}

std::string Difference(const std::string& expected, const std::string& actual)
{
    return expected == actual ? "" : "it was: " + (actual.empty() ? "(empty)" : actual);
}

std::string OrEmpty(const std::string& text)
{
    return text.empty() ? "empty" : text;
}

} // namespace

const std::vector<std::string>& KnownKeys()
{
    static const std::vector<std::string> keys = {"rule", "event rules", "tree", "tree xml", "true", "false", "scene",
        "device", "setting", "locale", "runner", "node", "log", "log sql", "file", "common", "sections", "formula", "compare",
        "recovery line", "rule set", "repaired", "outcome"};
    return keys;
}

void ExampleObserver::OnEventDecided(Evidence::Event event)
{
    for (const Evidence::Alternative& alternative : event.alternatives) {
        for (const Evidence::Rule& rule : alternative.rules) {
            reason = Evidence::ReasonText(rule.reason);
            const auto* const node = std::get_if<Evidence::Node>(&rule.part);
            formulaResult = node != nullptr && node->formula ? node->formula->result : formulaResult;
            const auto* const command = std::get_if<Evidence::Command>(&rule.part);
            sql = command != nullptr && !command->statements.empty() ? command->statements.back().sql : sql;
        }
    }
}

void ExampleObserver::OnTreeFolded(std::vector<Evidence::FoldedEvent> events)
{
    for (const Evidence::FoldedEvent& event : events) {
        statuses[event.id] = event.status;
    }
}

ExampleRun::ExampleRun(const PageExample& example) : mExample(example)
{
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
    mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
    for (const std::string& setting : example.All("setting")) {
        const auto [key, value] = SplitOnce(setting, "=");
        mSettings.Set(key, value);
    }
    if (example.First("locale") == "decimal comma") {
        mHostLocale.emplace();
    }
    if (example.Has("rule set")) {
        CopyRuleSet(example.All("rule set"));
    } else {
        WriteTreeFile();
        WriteRuleFile();
    }
    WriteDevice();
    mInfo = MakeInfo();
    mEngine = std::make_unique<Arborist>(mInfo);
    mEngine->SetObserver(mObserver);
    Detect();
}

void ExampleRun::CopyRuleSet(const std::vector<std::string>& folders) const
{
    for (const char* name : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        for (const std::string& folder : folders) {
            const std::filesystem::path file = std::filesystem::path(folder) / name;
            if (!mDir.Has(name) && std::filesystem::exists(file)) {
                std::filesystem::copy_file(file, mDir.Path(name));
            }
        }
    }
}

void ExampleRun::Detect()
{
    try {
        mResults = mEngine->StartDetection();
    } catch (const std::exception& exception) {
        mException = exception.what();
    }
}

void ExampleRun::WriteTreeFile() const
{
    std::string trees;
    if (mExample.Has("tree xml")) {
        trees = "<Tree id=\"T\" version=\"1\" type=\"t\">" + mExample.First("tree xml") + "</Tree>";
    } else {
        for (const std::string& tree : SplitAt(mExample.First("tree", "T = OR(E)"), "; ")) {
            trees += "<Tree id=\"T\" version=\"1\" type=\"t\">" + XmlOfTree(tree) + "</Tree>";
        }
    }
    mDir.Write("FaultTrees.xml", std::string("<Root version=\"1\"><") + TAG + ">" + trees + "</" + TAG + "></Root>");
}

void ExampleRun::WriteRuleFile() const
{
    std::string rules;
    for (const std::string& rule : mExample.All("rule")) {
        rules += NamedRule(rule);
    }
    if (mExample.Has("formula")) {
        rules += FormulaRule(mExample);
    }
    if (mExample.Has("compare")) {
        rules += Comparison(mExample.First("compare")).Rule();
    }
    std::string eventRules = mExample.First("event rules", rules.empty() ? "" : EventRule("E", "r"));
    for (const std::string& id : SplitAt(mExample.First("true"), ", ")) {
        eventRules += EventRule(id, "always");
    }
    for (const std::string& id : SplitAt(mExample.First("false"), ", ")) {
        eventRules += EventRule(id, "");
    }
    rules += "<codeRule name=\"always\" detectScene=\"1\"><detectInfo id=\"always\"/></codeRule>";
    std::string common;
    for (const std::string& entry : mExample.All("common")) {
        common += "<commonPart>" + entry + "</commonPart>";
    }
    mDir.Write("FaultTreeRules.xml", "<Root>" + Section("RuleList", "<rule>" + rules + "</rule>") +
        Section("EventRules", eventRules) + (common.empty() ? "" : Section("RuleCommonPart", common)) +
        mExample.First("sections") + "</Root>");
}

void ExampleRun::WriteDevice() const
{
    mDir.MakeDir("device");
    for (const std::string& node : SplitAt(mExample.First("node"), " | ")) {
        const auto [name, value] = SplitOnce(node, " = ");
        mDir.Write(name, WithLineEnds(value));
    }
    if (mExample.Has("compare")) {
        mDir.Write("observed", Comparison(mExample.First("compare")).observed);
    }
    WriteLog(mExample);
    for (const std::string& repair : mExample.All("repaired")) {
        UpdateRepairDb(repair);
    }
    for (const std::string& file : mExample.All("file")) {
        const auto [path, sql] = SplitOnce(file, " ");
        const std::string place = mDir.Write("device" + path, "");
        EventLogBuilder::Run(place, sql);
    }
}

std::shared_ptr<DetectInfo> ExampleRun::MakeInfo() const
{
    std::map<std::string, std::string> device = {{"Product", "LAP-A"}, {"CpuName", "C-9"}, {"BatteryCapacity", "5000"}};
    for (const std::string& attribute : SplitAt(mExample.First("device"), ", ")) {
        const auto [name, value] = SplitOnce(attribute, "=");
        device[name] = value;
    }
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = std::stoi(mExample.First("scene", "1"));
    info->mTreeTag = TAG;
    info->mRuleFileDir = mDir.Path();
    info->mDeviceDetails = std::make_shared<DeviceDetails>(
        "laptop", device["Product"], "x86", device["CpuName"], "16", "1920x1080", device["BatteryCapacity"]);
    info->mCodeRuleRunner = std::make_shared<Answers>(SplitAt(mExample.First("runner"), ", "));
    return info;
}

std::string ExampleRun::Query(const std::string& call, const std::string& argument, bool before)
{
    Arborist fresh(mInfo);
    Arborist& engine = before ? fresh : *mEngine;
    if (call == "IsRunRule") {
        return engine.IsRunRule(argument) ? "true" : "false";
    }
    return OrEmpty(call == "GetCodeRuleFaultDescId" ? engine.GetCodeRuleFaultDescId(argument)
            : call == "GetCodeRuleSuggestionId"     ? engine.GetCodeRuleSuggestionId(argument)
                                                    : engine.GetCodeRuleRepairId(argument));
}

std::string ExampleRun::RootCauses() const
{
    std::string causes;
    for (const auto& result : mResults) {
        for (const auto& node : result->GetTreeNodes()) {
            causes += (causes.empty() ? "" : ", ") + node->mId;
        }
    }
    return causes;
}

std::string ExampleRun::DescriptionOrOperation(const std::string& what, const std::string& eventId) const
{
    for (const auto& result : mResults) {
        for (const auto& cause : result->mRootCauseResults) {
            if (cause->mNode->mId == eventId) {
                return what == "description" ? OrEmpty(cause->mFaultDescription)
                    : cause->mRepairInfos.empty()
                    ? "no repair"
                    : OrEmpty(cause->mRepairInfos.front().GetOperation());
            }
        }
    }
    return "no such root cause";
}

std::ptrdiff_t ExampleRun::CountLines(const std::string& text) const
{
    const std::vector<std::string> lines = mLog.Lines();
    return std::count_if(lines.begin(), lines.end(),
        [&text](const std::string& line) { return line.find(text) != std::string::npos; });
}

std::string ExampleRun::FaultOf(const std::string& outcome)
{
    std::smatch match;
    const auto is = [&](const char* form) { return std::regex_match(outcome, match, std::regex(form)); };
    if (is("(\\w+) is (TRUE|FALSE|UNKNOWN)")) {
        const auto status = mObserver->statuses.find(match[1]);
        return status == mObserver->statuses.end() ? "no such event" : Difference(match[2], Evidence::StateText(status->second));
    }
    if (is("(holds|does not hold)")) {
        return Difference(match[1], Evidence::IsInError(mObserver->statuses["E"]) ? "holds" : "does not hold");
    }
    if (is("reason (\\w+)")) {
        return Difference(match[1], mObserver->reason);
    }
    if (is("root causes number (\\d+)")) {
        const auto count = [](std::size_t sum, const auto& result) { return sum + result->GetTreeNodes().size(); };
        return Difference(match[1],
            std::to_string(std::accumulate(mResults.begin(), mResults.end(), std::size_t{0}, count)));
    }
    if (is("root causes (.+)")) {
        return Difference(match[1], RootCauses());
    }
    if (is("no root cause")) {
        return mResults.empty() ? "the detection gave nothing" : Difference("", RootCauses());
    }
    if (is("(IsRunRule|GetCodeRule\\w+Id)\\((\\w+)\\)( before the detection)? is (\\w+)")) {
        return Difference(match[4], Query(match[1], match[2], match[3].matched));
    }
    if (is("the formula gives (.+)")) {
        return Difference(match[1], mObserver->formulaResult.empty() ? "nothing" : mObserver->formulaResult);
    }
    if (is("\"(.+)\" gives (.+)")) {
        return Difference(match[2], AnswerOf(DevicePaths::DerivedDatabase(), match[1]));
    }
    if (is("\"(.+)\" in (\\S+) gives (.+)")) {
        return Difference(match[3], AnswerOf(mDir.Path("copies/" + match[2].str()), match[1]));
    }
    if (is("copied (.+)")) {
        return Difference(match[1] == "nothing" ? "" : match[1].str(), FilesIn(mDir.Path("copies")));
    }
    if (is("the query is (.+)")) {
        return Difference(match[1], mObserver->sql);
    }
    if (is("log \"(.+)\" is (there|not there)")) {
        return Difference(match[2], CountLines(match[1]) > 0 ? "there" : "not there");
    }
    if (is("log \"(.+)\" is there (\\d+) times")) {
        return Difference(match[2], std::to_string(CountLines(match[1])));
    }
    if (is("an exception with (.+)")) {
        return mException.find(match[1]) != std::string::npos ? "" : "it was: " + OrEmpty(mException);
    }
    if (is("the version is (.+)")) {
        return Difference(match[1], mResults.empty() ? "" : mResults.front()->mVersion);
    }
    if (is("results (\\d+)")) {
        return Difference(match[1], std::to_string(mResults.size()));
    }
    if (is("the (description|operation) of (\\w+) is (\\w+)")) {
        return Difference(match[3], DescriptionOrOperation(match[1], match[2]));
    }
    if (is("the time is (.+)")) {
        const std::int64_t time = ResetTimeParser("").GetTime(mExample.First("recovery line"));
        return Difference(match[1], time == 0 ? "not known" : TimeUtil::GetFormatTime(time));
    }
    return "no known form of an outcome";
}
