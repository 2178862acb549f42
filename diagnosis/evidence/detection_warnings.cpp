#include "diagnosis/evidence/detection_warnings.h"

#include <filesystem>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/log_db/event_log_look.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// Formats of the library's lines, as docs/log-messages.md lists them.
constexpr char SQL_FAILED[] = "FUNc:%s: Execute sql failed: %s";
constexpr char SQL_WITHOUT_ROWS_FAILED[] = "FUNc:%s: ExecuteNoCallback sql failed: %s";
constexpr char NO_DATABASE_FOLDER[] = "FUNc:%s: database dir is empty.";
constexpr char NO_EVENT_TABLES[] =
    "FUNc:%s: lumbra db not exist or table event_info not exist or table event_info_flow not exist.";
constexpr char OPEN_FAILED[] = "FUNc:%s: open db %s fail.";
constexpr char BAD_EXTRA[] = "FUNc:%s: parse eventParamJson err. %s ";
constexpr char BAD_WEIGHT[] = "FUNc:%s: parseJson err. %s ";
constexpr char BAD_COLUMNS[] = "FUNc:%s: jsonStr[%s] err. %s ";
constexpr char READS_EVENTS[] = "FUNc:%s: AppFileDir: %s";

constexpr std::string_view TABLE_BUILDER = "CommonPartDbHelper::GetLumbraDataByFilter";

std::string Quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

// Rows that can't be seen, in words.
std::string OfRows(std::int64_t some, std::int64_t all)
{
    return std::to_string(some) + " of " + std::to_string(all) + (all == 1 ? " row" : " rows");
}

std::string Setting(const Bundle& bundle, const char* key)
{
    const auto setting = bundle.settings.find(key);
    return setting == bundle.settings.end() ? "" : setting->second;
}

bool Exists(const std::string& path)
{
    std::error_code error;
    return fs::exists(path, error);
}

} // namespace

bool DetectionWarnings::IsWanted(unsigned int level, const std::string& format) const
{
    if (level == FT::LEVEL_DEBUG) {
        return format == READS_EVENTS;
    }
    return level >= FT::LEVEL_WARN && (format == SQL_FAILED || format == SQL_WITHOUT_ROWS_FAILED
        || format == NO_DATABASE_FOLDER || format == NO_EVENT_TABLES || format == OPEN_FAILED
        || format == BAD_EXTRA || format == BAD_WEIGHT || format == BAD_COLUMNS);
}

void DetectionWarnings::OnLine(const std::string& function, const std::string& message)
{
    static constexpr std::string_view FAILED = " sql failed: ";
    const auto failed = message.find(FAILED);
    if (message.find("Json err. ") != std::string::npos || message.compare(0, 8, "jsonStr[") == 0) {
        mHasBadExtra = true;
        return;
    }
    if (failed == std::string::npos) {
        mBuildsTables = mBuildsTables || function == TABLE_BUILDER;
        if (function == "CommonPartDbHelper::CopyDbFile") {
            mList.Add("app_database_dir_empty", "the setting \"AppDatabaseDir\" is empty: databases that the rule set "
                "names are not copied, and rules on them find nothing");
        }
        return;
    }
    mSqlTrouble = message.substr(failed + FAILED.size());
    if (mFamily == Observer::Family::ALARM) {
        mEventLogTrouble = mSqlTrouble; // each id of a range may say so
        mSqlTrouble.clear();
    } else if (mFamily == Observer::Family::NONE) {
        TellFailedSql("before the rules ran");
    }
}

void DetectionWarnings::OnRuleSetFile(const Observer::RuleSetFile& file)
{
    if (file.kind != Observer::RuleSetFile::Kind::RULES || file.state != Observer::RuleSetFile::State::LOADED) {
        return;
    }
    if (file.count == 0) {
        mList.Add("no_rules", std::string(file.path) + ": no rule under the tree tag");
    }
}

void DetectionWarnings::OnThresholds(const Observer::ThresholdsSeen& thresholds)
{
    mLacksThresholds = mLacksThresholds || (!thresholds.areSet && thresholds.systemParams + thresholds.thresholds > 0);
}

void DetectionWarnings::OnRuleAsked(const Observer::RuleAsked& rule)
{
    mFamily = rule.family;
    mRuleName = rule.ruleName;
}

void DetectionWarnings::OnAlarmWindow(const Observer::AlarmWindowSeen& window)
{
    using Reason = Observer::Reason;
    mWantsLog = mWantsLog || (window.reason != Reason::WINDOW_ABSENT && window.reason != Reason::WINDOW_EMPTY);
}

void DetectionWarnings::OnNodeFile(const Observer::NodeFileSeen& node)
{
    if (!node.readable) {
        mUnreadableNodes.emplace(node.path);
    }
}

void DetectionWarnings::OnQuery(const Observer::QuerySeen& query)
{
    const std::string database = fs::path(query.database).filename().string();
    if (!query.opened) {
        mList.Add("database_unavailable",
            (database.empty() ? "the derived database" : "the database " + Quoted(database)) + " can't be opened");
    }
    TellFailedSql("of the rule " + Quoted(mRuleName) + " on " + Quoted(database));
}

void DetectionWarnings::OnRuleDecided(const Observer::RuleDecided& rule)
{
    if (rule.reason == Observer::Reason::NO_RUNNER) {
        mList.Add("no_code_runner", "the code rule " + Quoted(rule.ruleName)
            + " has no recorded answer, and no --code-runner was given: taken as not present");
    }
    TellFailedSql("of the rule " + Quoted(mRuleName));
    mFamily = Observer::Family::NONE;
}

void DetectionWarnings::TellFailedSql(const std::string& where)
{
    if (!mSqlTrouble.empty()) {
        mList.Add("sql_failed", "SQL " + where + " failed: " + mSqlTrouble);
        mSqlTrouble.clear();
    }
}

void DetectionWarnings::LookBefore(const BundleSession& session)
{
    mHadLog = Exists(session.ProgramDataPath(EVENT_LOG));
}

void DetectionWarnings::LookAfter(const BundleSession& session)
{
    if (mWantsLog || mBuildsTables) {
        TellEventLog(session);
    }
    TellNodes();
    TellAttributes(session);
}

// One line: rule sets for many kinds of devices name many files that one device lacks.
void DetectionWarnings::TellNodes()
{
    static constexpr std::size_t LARGEST_NUMBER = 20;
    std::string message;
    std::size_t number = 0;
    for (const std::string& path : mUnreadableNodes) {
        if (++number <= LARGEST_NUMBER) {
            message += (message.empty() ? "" : ", ") + Quoted(path);
        }
    }
    if (number == 0) {
        return;
    }
    message += number > LARGEST_NUMBER ? " and " + std::to_string(number - LARGEST_NUMBER) + " more" : "";
    mList.Add("node_unreadable", (number == 1 ? "a node file" : std::to_string(number) + " node files")
        + " can't be read: " + message);
}

void DetectionWarnings::TellEventLog(const BundleSession& session)
{
    if (!mHadLog) {
        mList.Add("event_log_missing", "there is no event log: rules and tables that ask for events find none");
        return;
    }
    const EventLogLook look = LookAtEventLog(session.ProgramDataPath(EVENT_LOG), mHasBadExtra);
    const std::string& trouble = look.problem.empty() ? mEventLogTrouble : look.problem;
    if (!trouble.empty()) {
        mList.Add("event_log_unreadable", "the event log can't be read to its end: " + trouble);
    }
    const auto tellRows = [&](const char* code, std::int64_t some, const std::string& what) {
        if (some > 0) {
            mList.Add(code, OfRows(some, look.rows) + " of the event log " + what);
        }
    };
    if (mWantsLog) {
        tellRows("rows_unseen", look.withoutTime, "can't be seen by alarm rules: no time stands under the same key");
        tellRows("rows_unseen", look.withoutVersion, "can't be seen by alarm rules: no version stands under their "
            "\"version_id\"");
    }
    if (mBuildsTables) {
        tellRows("rows_unseen", look.withoutParent, "can't be seen by derived tables: no time names them as its "
            "\"event_pid\"");
    }
    if (Setting(session.GetBundle(), Settings::VERSION_NAME).empty()) {
        tellRows("version_name_empty", look.ofAVersion, "carry a version, and the setting \"VersionName\" is empty: "
            "rules that count from the last update on pass them over");
    }
    tellRows("bad_extra", look.badExtra, "have an \"extra\" that is no JSON object");
}

void DetectionWarnings::TellAttributes(const BundleSession& session)
{
    if (!mLacksThresholds) {
        return;
    }
    const DeviceDetails& device = session.GetBundle().device;
    const std::pair<const char*, std::string> attributes[] = {{"CpuName", device.GetCpuName()},
        {"RamSize", device.GetRamSize()}, {"Resolution", device.GetResolution()},
        {"BatteryCapacity", device.GetBatteryCapacity()}};
    std::string empty;
    for (const auto& [name, value] : attributes) {
        empty += value.empty() ? (empty.empty() ? "" : ", ") + Quoted(name) : "";
    }
    mList.Add("attribute_empty", "the device has no " + empty + ": the rule set's thresholds for this device are "
        "not set, and rules that compare with them find nothing");
}

} // namespace diagnosis
