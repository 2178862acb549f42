#include "diagnosis/evidence/detection_warnings.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "arborist/frame/settings.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/log_db/event_log_look.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using Evidence::Reason;

std::string Quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

Warning OfRule(WarningCode code, std::string message, const std::string& rule)
{
    return {code, {.message = std::move(message), .rule = rule}};
}

// SQL of the common part has its line in the rule file; other SQL is placed by its rule.
Warning OfStatement(const Evidence::Trouble& trouble)
{
    const std::string about =
        trouble.ruleName.empty() ? "before the rules ran" : "of the rule " + Quoted(trouble.ruleName);
    return {WarningCode::SQL_FAILED,
        {.message = "SQL " + about + " failed: " + trouble.words,
            .file = trouble.line == 0 ? "" : trouble.file,
            .line = trouble.line,
            .rule = trouble.ruleName}};
}

// The number of skipped rows in words.
std::string OfRows(std::int64_t some, std::int64_t all)
{
    return std::to_string(some) + " of " + std::to_string(all) + (all == 1 ? " row" : " rows");
}

std::string Setting(const Bundle& bundle, const char* key)
{
    const auto setting = bundle.settings.find(key);
    return setting == bundle.settings.end() ? "" : setting->second;
}

// A formula takes a "-" at the front for an operator.
bool IsNegative(const std::string& value)
{
    const std::size_t first = value.find_first_not_of(" \t\r\n");
    return first != std::string::npos && value[first] == '-';
}

// "a, b and 3 more" of these, each in quotes.
std::string Listed(const std::set<std::string>& texts)
{
    static constexpr std::size_t LARGEST_NUMBER = 20;
    std::string list;
    std::size_t number = 0;
    for (const std::string& text : texts) {
        if (++number <= LARGEST_NUMBER) {
            list += (list.empty() ? "" : ", ") + Quoted(text);
        }
    }
    return list + (number > LARGEST_NUMBER ? " and " + std::to_string(number - LARGEST_NUMBER) + " more" : "");
}

bool Exists(const std::string& path)
{
    std::error_code error;
    return fs::exists(path, error);
}

} // namespace

void DetectionWarnings::OnRuleSet(const Evidence::RuleSet& ruleSet)
{
    mEventTables = {ruleSet.eventTables.begin(), ruleSet.eventTables.end()};
    for (const Evidence::RuleSetFile& file : ruleSet.files) {
        if (file.type == Evidence::RuleSetFileType::RULES && file.state == Evidence::RuleSetFileState::LOADED
            && file.count == 0) {
            mList.Add({WarningCode::NO_RULES, {.message = file.path + ": no rule under the tree tag", .file = file.path}});
        }
    }
}

void DetectionWarnings::OnTreeFinished(const Evidence::TreeResult& result)
{
    const auto& open = result.verdict.open;
    ++mTrees;
    mStoppedTrees += std::any_of(open.begin(), open.end(), [](const Evidence::OpenCheck& check) {
        return check.reason == Reason::STOPPED;
    }) ? 1U : 0U;
    if (result.verdict.isTrueWithoutCause) {
        mList.Add(WarningCode::TRUE_WITHOUT_CAUSE, "the top event of the tree " + Quoted(result.id)
            + " is TRUE, and no cut set explains it: no root cause can be told");
    }
}

void DetectionWarnings::OnTrouble(const Evidence::Trouble& trouble)
{
    using Kind = Evidence::Trouble::Kind;
    switch (trouble.kind) {
    case Kind::STATEMENT_FAILED:
    case Kind::REPAIRS_UNREADABLE:
        mList.Add(OfStatement(trouble));
        break;
    case Kind::EVENT_LOG_UNREADABLE:
        mEventLogTrouble = trouble.words; // each id of a range may report it
        break;
    case Kind::BAD_EXTRA:
        if (trouble.subject.empty()) {
            mHasBadExtra = true;
        } else {
            mBadMembers.insert(trouble.subject);
        }
        break;
    case Kind::NO_COPY_FOLDER:
        mList.Add(WarningCode::APP_DATABASE_DIR_EMPTY, "the setting \"AppDatabaseDir\" is empty: databases that the rule set "
            "names are not copied, and rules on them find nothing");
        break;
    case Kind::NOT_COPIED:
        mList.Add(WarningCode::DATABASE_UNAVAILABLE, "the database or archive " + Quoted(trouble.subject)
            + " can't be copied or unpacked: rules on databases of its kind miss it");
        break;
    case Kind::TABLE_NOT_BUILT:
        if (const auto table = mEventTables.find(trouble.subject); table != mEventTables.end()) {
            mEventTables.erase(table);
        }
        break;
    case Kind::REPAIR_HISTORY_LOST:
        mList.Add(WarningCode::REPAIR_HISTORY_LOST, "the repair " + Quoted(trouble.subject) + " was recorded later, at "
            + trouble.words + ": it counts as not recorded, and an earlier date of it is not kept");
        break;
    case Kind::NO_THRESHOLDS:
        mLacksThresholds = true;
        break;
    case Kind::CAUSES_LEFT_OUT:
        mList.Add(WarningCode::CAUSES_LEFT_OUT, "the tree " + Quoted(trouble.subject) + " has " + trouble.words + " root causes: the first "
            + std::to_string(MOST_ROOT_CAUSES) + " are listed");
        break;
    }
}

void DetectionWarnings::OnEvent(const Evidence::Event& event)
{
    for (const Evidence::Alternative& alternative : event.alternatives) {
        for (const Evidence::Rule& rule : alternative.rules) {
            OnRule(rule);
        }
    }
}

void DetectionWarnings::OnRule(const Evidence::Rule& rule)
{
    if (const auto* const alarm = std::get_if<Evidence::Alarm>(&rule.part)) {
        for (const Evidence::Window& window : alarm->windows) {
            mWantsLog = mWantsLog || (window.reason != Reason::WINDOW_ABSENT && window.reason != Reason::WINDOW_EMPTY);
            mHasOtherVersions = mHasOtherVersions || (window.versionFilter && window.count.rowsOfOtherVersion != 0);
        }
    } else if (const auto* const node = std::get_if<Evidence::Node>(&rule.part)) {
        for (const Evidence::NodeFile& file : node->files) {
            if (!file.readable) {
                mUnreadableNodes.insert(file.path);
            }
            if (node->formula && IsNegative(file.value)) {
                mNegativeNodes.insert(file.path);
            }
        }
    } else if (const auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
        for (const Evidence::Statement& statement : command->statements) {
            OnStatement(statement, rule.name);
        }
    }
    if (rule.reason == Reason::NO_RUNNER) {
        mList.Add(OfRule(WarningCode::NO_CODE_RUNNER, "the code rule " + Quoted(rule.name)
                + " has no recorded answer, and no --code-runner was given: taken as not present",
            rule.name));
    }
}

void DetectionWarnings::OnStatement(const Evidence::Statement& statement, const std::string& ruleName)
{
    const std::string database = fs::path(statement.database).filename().generic_string();
    if (!statement.opened) {
        mList.Add(WarningCode::DATABASE_UNAVAILABLE,
            (database.empty() ? "the derived database" : "the database " + Quoted(database)) + " can't be opened");
    }
    if (!statement.error.empty()) {
        mList.Add(OfRule(WarningCode::SQL_FAILED,
            "SQL of the rule " + Quoted(ruleName) + " on " + Quoted(database) + " failed: " + statement.error, ruleName));
    }
}

void DetectionWarnings::LookBefore(const BundleSession& session)
{
    mHadLog = Exists(session.ProgramDataPath(EVENT_LOG));
}

void DetectionWarnings::LookAfter(
    const BundleSession& session, std::int64_t now, std::optional<std::int64_t> asOf)
{
    TellStop();
    // Looking at a log takes as long as reading it, for which a stopped detection has no time left.
    if (mStoppedTrees == 0 && (mWantsLog || !mEventTables.empty())) {
        TellEventLog(session, now, asOf);
    }
    TellNodes();
    TellAttributes(session);
}

void DetectionWarnings::TellStop()
{
    if (mStoppedTrees != 0) {
        mList.Add(WarningCode::STOPPED, "the detection was stopped: " + std::to_string(mStoppedTrees) + " of "
            + std::to_string(mTrees) + (mTrees == 1 ? " tree is" : " trees are") + " not decided");
    }
}

// A single warning for all files: rule sets for many kinds of devices name many files that one device lacks.
void DetectionWarnings::TellNodes()
{
    const std::size_t number = mUnreadableNodes.size();
    if (number != 0) {
        mList.Add(WarningCode::NODE_UNREADABLE, (number == 1 ? "a node file" : std::to_string(number) + " node files")
            + " can't be read: " + Listed(mUnreadableNodes));
    }
    if (!mNegativeNodes.empty()) {
        mList.Add(WarningCode::NEGATIVE_VALUE,
            "formulas take the \"-\" of a negative value for an operator: " + Listed(mNegativeNodes));
    }
}

void DetectionWarnings::TellEventLog(
    const BundleSession& session, std::int64_t now, std::optional<std::int64_t> asOf)
{
    if (!mHadLog) {
        mList.Add(WarningCode::EVENT_LOG_MISSING, "there is no event log: rules and tables that ask for events find none");
        return;
    }
    const std::string version = Setting(session.GetBundle(), Settings::VERSION_NAME);
    const EventLogLook look = LookAtEventLog(
        session.ProgramDataPath(EVENT_LOG), {now, asOf, mHasBadExtra, version});
    const std::string& trouble = look.problem.empty() ? mEventLogTrouble : look.problem;
    if (!trouble.empty()) {
        mList.Add(WarningCode::EVENT_LOG_UNREADABLE, "the event log can't be read to its end: " + trouble);
    }
    const auto tellRows = [&](WarningCode code, std::int64_t some, const std::string& what) {
        if (some > 0) {
            mList.Add(code, OfRows(some, look.rows) + " of the event log " + what);
        }
    };
    if (mWantsLog) {
        tellRows(WarningCode::ROWS_UNSEEN, look.withoutTime, "can't be seen by alarm rules: no time stands under the same key");
        tellRows(WarningCode::ROWS_UNSEEN, look.withoutVersion, "can't be seen by alarm rules: no version stands under their "
            "\"version_id\"");
    }
    if (!mEventTables.empty()) {
        tellRows(WarningCode::ROWS_UNSEEN, look.withoutParent, "can't be seen by derived tables: no time names them as its "
            "\"event_pid\"");
    }
    if (version.empty()) {
        tellRows(WarningCode::VERSION_NAME_EMPTY, look.ofAVersion, "carry a version, and the setting \"VersionName\" is empty: "
            "rules that count from the last update on pass them over");
    } else if (mHasOtherVersions && !look.isVersionKnown) {
        tellRows(WarningCode::VERSION_NAME_UNKNOWN, look.ofAVersion, "carry a version, and none of them is the setting "
            "\"VersionName\", " + Quoted(version) + ": rules that count from the last update on pass them over");
    }
    tellRows(WarningCode::EVENTS_AFTER_NOW, look.afterNow, "are later than now, and count; --as-of hides them");
    tellRows(WarningCode::BAD_EXTRA, look.badExtra, "have an \"extra\" that is no JSON object");
    for (const std::string& member : mBadMembers) {
        mList.Add(WarningCode::BAD_EXTRA, "the member " + Quoted(member) + " of an \"extra\" in the event log can't be used: it is "
            "no text and no number");
    }
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
    mList.Add(WarningCode::ATTRIBUTE_EMPTY, "the device has no " + empty + ": the rule set's thresholds for this device are "
        "not set, and rules that compare with them find nothing");
}

} // namespace diagnosis
