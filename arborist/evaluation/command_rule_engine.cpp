#include "arborist/evaluation/command_rule_engine.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/log.h"
#include "arborist/model/common_part.h"
#include "arborist/stores/common_part/command_rule_db_helper.h"
#include "arborist/utilities/string_util.h"

namespace {

constexpr char ANALYSIS_SQL[] = "SQL";
constexpr char NORMALIZATION[] = "normalization";
constexpr char DEF_DB_SQL[] = "defDBSql";
constexpr char DYNAMIC_TYPE[] = "dynamic";
constexpr char SYSTEM_PARAM_TYPE[] = "systemParam";
constexpr char STATIC_TYPE[] = "static";
constexpr char SINGLE_DB[] = "singleDB";

bool IsThresholdSource(const std::string& type)
{
    return type == DYNAMIC_TYPE || type == SYSTEM_PARAM_TYPE || type == STATIC_TYPE;
}

Evidence::MissingCopies MissingCopiesOf(const DefDbTableBean& bean)
{
    Evidence::MissingCopies missing{bean.GetNoCopy(), {}, bean.GetDbName()};
    if (missing.cause != Evidence::NoCopy::FOLDER_MISSING) {
        missing.folders = {bean.GetSearchedFolder()};
        return missing;
    }
    for (const auto& path : bean.GetDbPathList()) {
        if (path != nullptr && !path->GetPathValue().empty()) {
            missing.folders.push_back(path->GetPathValue());
        }
    }
    return missing;
}

} // namespace

CommandRuleEngine::CommandRuleEngine(std::shared_ptr<CommonPart> commonPart, std::shared_ptr<RuleHelper> ruleHelper)
    : mCommonPart(std::move(commonPart)), mPrepared(mCommonPart), mRuleHelper(std::move(ruleHelper)),
      mDbHelper(std::make_shared<CommandRuleDbHelper>())
{
}

CommandRuleEngine::~CommandRuleEngine() = default;

void CommandRuleEngine::EndDetection()
{
    mDbHelper->Close();
}

bool CommandRuleEngine::IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId)
{
    const auto commandRule = std::dynamic_pointer_cast<CommandRule>(rule);
    if (commandRule == nullptr) {
        return Decide(Reason::NONE, false);
    }
    if (eventId.empty()) {
        return Decide(Reason::NO_EVENT_ID, false);
    }
    const bool hasReference = commandRule->referenceDefDb != nullptr;
    if (mCommonPart == nullptr ||
        (!hasReference && !mCommonPart->IsHasThredCommonPart(commandRule->commonPartName))) {
        return Reject(Reason::NO_COMMON_PART, commandRule->commonPartName);
    }
    if (commandRule->analysisMethod.type != ANALYSIS_SQL) {
        return Reject(Reason::NOT_SQL, commandRule->analysisMethod.type);
    }
    const Query query = QueryOf(*commandRule, eventId);
    if (!hasReference && !mPrepared->AreTablesWhole(commandRule->commonPartName, query.sql)) {
        Note(Reason::TABLE_INCOMPLETE);
    }
    return hasReference ? IsFaultInReference(*commandRule, query) : IsFaultInDatabase(*commandRule, query, "");
}

bool CommandRuleEngine::Reject(Reason reason, const std::string& name)
{
    if (GetRecord() != nullptr) {
        GetRecord()->badName = name;
    }
    return Decide(reason, false);
}

Evidence::Statement* CommandRuleEngine::AddRecord(const std::string& path, const std::string& sql)
{
    auto* const command = GetPart<Evidence::Command>();
    if (command == nullptr) {
        return nullptr;
    }
    Evidence::Statement& record = command->statements.emplace_back();
    record.database = path;
    record.sql = sql;
    WriteComparisonsInto(&record.comparisons);
    return &record;
}

CommandRuleEngine::Query CommandRuleEngine::QueryOf(const CommandRule& rule, const std::string& eventId) const
{
    const CommandRule::SqlItem& sqlItem = rule.analysisMethod.sqlItem;
    Query query;
    query.isNormalization = sqlItem.type == NORMALIZATION;
    if (!query.isNormalization && !sqlItem.type.empty() && sqlItem.type != DEF_DB_SQL) {
        Note(Reason::UNKNOWN_NAME);
    }
    GetTimeParaList(query.params, rule.params, sqlItem.type, sqlItem);
    GetTimeInterval(query.params, query.isNormalization, query.first, query.second);
    query.sql = GetSqlScript(sqlItem, eventId, rule.referenceDefDb);
    return query;
}

void CommandRuleEngine::GetTimeParaList(ParamList& list, const ParamMap& params, const std::string& analysisType,
    const CommandRule::SqlItem& sqlItem)
{
    list.clear();
    if (analysisType.empty() || analysisType == DEF_DB_SQL) {
        for (const auto& [id, param] : params) {
            list.push_back(param);
        }
    }
    if (analysisType == NORMALIZATION) {
        for (const std::string& id : sqlItem.timeParamList) {
            const auto found = params.find(id);
            if (found != params.end() && found->second != nullptr) {
                list.push_back(found->second);
            }
        }
    }
}

void CommandRuleEngine::GetTimeInterval(
    const ParamList& list, bool isNormalization, std::shared_ptr<Param>& first, std::shared_ptr<Param>& second)
{
    first.reset();
    second.reset();
    if (list.size() == 2 && isNormalization) {
        // Takes the first one for both, on purpose: rule files rely on the interval of no days, which multiplies values
        // by 30.
        first = list.front();
        second = list.front();
    }
}

std::string CommandRuleEngine::GetSqlScript(const CommandRule::SqlItem& sqlItem, const std::string& eventId,
    const std::shared_ptr<CommandRule::ReferenceDefDb>& reference) const
{
    // A copied database is queried completely, without a time limit.
    auto* const command = reference == nullptr ? GetPart<Evidence::Command>() : nullptr;
    const std::int64_t start = mRuleHelper == nullptr
        ? 0
        : mRuleHelper->GetDetectStartTime(sqlItem.time.period, sqlItem.BeginFlag, eventId,
              command == nullptr ? nullptr : &command->start.emplace());
    if (reference == nullptr && sqlItem.time.isBadPeriod) {
        Note(Reason::BAD_NUMBER);
    }
    if (command != nullptr && command->start && !command->start->unreadableRepair.empty()) {
        Note(Reason::REPAIR_UNREADABLE);
    }
    return reference == nullptr ? JoinSqlStrWithTime(sqlItem.sql, start) : sqlItem.sql;
}

std::string CommandRuleEngine::JoinSqlStrWithTime(const std::string& sql, std::int64_t start)
{
    // Searches the five lower-case letters anywhere in the text, and appends the condition at the very end: queries of
    // rule sets rely on both.
    const bool hasCondition = sql.find("where") != std::string::npos;
    return sql + (hasCondition ? " and occurrence_time >" : " where occurrence_time >") + std::to_string(start);
}

bool CommandRuleEngine::IsFaultInDatabase(const CommandRule& rule, const Query& query, const std::string& path)
{
    Evidence::Statement* const record = AddRecord(path, query.sql);
    bool isFault = false;
    if (mDbHelper->IsOpenDbSuccess(path)) {
        isFault = IsFaultInOpenDatabase(rule, query, record);
    } else {
        // Evaluates the values of the previous query, which are still in the parameters.
        isFault = IsFaultForSingleSql(rule, query.params);
        NoteTrouble(Reason::DATABASE_UNAVAILABLE, isFault);
    }
    if (record != nullptr) {
        record->reason = GetReason();
    }
    return isFault;
}

bool CommandRuleEngine::IsFaultInOpenDatabase(
    const CommandRule& rule, const Query& query, Evidence::Statement* record)
{
    const ParamList list =
        mDbHelper->RunSql(query.sql, query.params, query.isNormalization, query.first, query.second, record);
    const bool isFault = IsFaultForSingleSql(rule, list);
    NoteTrouble(TroubleOfStatement(), isFault);
    return isFault;
}

// Why the last statement gave no row to compare, or perhaps not all of them.
Evidence::Reason CommandRuleEngine::TroubleOfStatement() const
{
    if (mDbHelper->HasFailed()) {
        return Reason::STATEMENT_FAILED; // also behind its first row
    }
    if (mDbHelper->GetRowCount() != 1) {
        return Reason::ROW_COUNT;
    }
    return mDbHelper->IsIntervalMissing() ? Reason::NO_INTERVAL : Reason::NONE;
}

// Without a fault the trouble is the reason. What else keeps the rule from an answer is noted beside it.
void CommandRuleEngine::NoteTrouble(Reason trouble, bool isFault)
{
    if (trouble == Reason::NONE) {
        return;
    }
    if (isFault) {
        Note(trouble);
        return;
    }
    if (Evidence::CheckOf(GetReason()) == Evidence::Check::RULE_UNUSABLE) {
        Note(GetReason());
    }
    NoteReason(trouble);
}

bool CommandRuleEngine::IsFaultInReference(const CommandRule& rule, const Query& query)
{
    const auto bean = mCommonPart->GetDefDbCommonPart(rule.referenceDefDb->defDBName);
    if (!bean.has_value()) {
        return Reject(Reason::NO_SUCH_DATABASE, rule.referenceDefDb->defDBName);
    }
    const std::vector<std::string>& paths = bean->GetCopyDbFileList();
    NoteCopies(mPrepared->GetDefDbCommonPart(rule.referenceDefDb->defDBName).value_or(*bean));
    std::int64_t hits = 0;
    for (const std::string& path : paths) {
        hits += IsFaultInDatabase(rule, query, path) ? 1 : 0;
    }
    std::int64_t neededHits = 1;
    if (rule.referenceDefDb->type != SINGLE_DB) {
        // Without a number no hit is needed, so that even no file is enough.
        const std::string& number = rule.referenceDefDb->defDBNum;
        neededHits = number.empty() ? 0 : StringUtil::StringToInt32Def(number, 0, 10);
        NoteObserved(std::string(TYPE_INT), number.empty() ? "none" : number);
    }
    if (auto* const command = GetPart<Evidence::Command>()) {
        command->hits = {rule.referenceDefDb->defDBName, paths.size(), hits, neededHits};
        if (paths.empty() && bean->GetNoCopy() != Evidence::NoCopy::NONE) {
            command->hits->missingCopies = MissingCopiesOf(*bean);
        }
    }
    return hits >= neededHits ? Decide(Reason::HITS_REACHED, true) : Decide(Reason::HITS_SHORT, false);
}

// Notes what the databases lack that the rule asks.
void CommandRuleEngine::NoteCopies(const DefDbTableBean& bean) const
{
    if (bean.GetCopyDbFileList().empty() || bean.LacksCopies()) {
        Note(Reason::DATABASE_UNAVAILABLE);
    }
    if (bean.LacksTables()) {
        Note(Reason::TABLE_INCOMPLETE);
    }
}

std::shared_ptr<Param> CommandRuleEngine::GetParam(const ParamList& list, const std::string& id)
{
    for (const auto& param : list) {
        if (param != nullptr && param->id == id) {
            return param;
        }
    }
    return nullptr;
}

std::string CommandRuleEngine::GetThreshold(const std::shared_ptr<OrLogic>& orLogic, const CommandRule& rule) const
{
    if (orLogic == nullptr) {
        return "";
    }
    if (orLogic->GetLogicType() == DYNAMIC_TYPE) {
        return mCommonPart->GetThresholdValue(orLogic->GetCommonPartParamId(), rule.commonPartName);
    }
    if (orLogic->GetLogicType() == SYSTEM_PARAM_TYPE) {
        return mCommonPart->GetSystemValue(orLogic->GetCommonPartParamId(), rule.commonPartName);
    }
    return orLogic->GetLogicType() == STATIC_TYPE ? orLogic->GetValue() : "";
}

bool CommandRuleEngine::IsFaultForSingleSql(const CommandRule& rule, const ParamList& list)
{
    NoteReason(Reason::NO_CONDITION);
    for (const auto& orLogic : rule.analysisMethod.sqlItem.conditionList) {
        if (orLogic == nullptr) {
            continue;
        }
        NoteEarlierCondition();
        bool isMet = false;
        if (orLogic->GetType() == SINGLE_LOGIC) {
            isMet = IsFaultForSingleLogic(list, orLogic, rule);
            if (!isMet && GetReason() == Reason::NO_VALUE) {
                return false; // ends the rule without the conditions behind
            }
        } else if (orLogic->GetType() == MULTIPLE_LOGIC) {
            isMet = IsFaultForSqlMultiLogic(list, orLogic);
        } else {
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Undefined orLogic type: %s.",
                "CommandRuleEngine::IsFaultForSingleSql", orLogic->GetType().c_str());
            return Decide(Reason::UNKNOWN_CONDITION, false);
        }
        if (isMet) {
            return Decide(Reason::CONDITION_MET, true);
        }
    }
    return false;
}

// Notes the reason of the previous condition if it is open: the next condition would overwrite it.
void CommandRuleEngine::NoteEarlierCondition() const
{
    if (GetReason() != Reason::NO_CONDITION && Evidence::IsOpen(Evidence::CheckOf(GetReason()))) {
        Note(GetReason());
    }
}

bool CommandRuleEngine::IsFaultForSingleLogic(
    const ParamList& list, const std::shared_ptr<OrLogic>& orLogic, const CommandRule& rule)
{
    const auto param = GetParam(list, orLogic->GetParamId());
    const std::string& source = orLogic->GetLogicType();
    const std::string threshold = GetThreshold(orLogic, rule);
    const std::string_view sourceWord = IsThresholdSource(source) ? std::string_view(source) : std::string_view();
    const std::string_view sourceId =
        source == STATIC_TYPE ? std::string_view() : std::string_view(orLogic->GetCommonPartParamId());
    if (param == nullptr || param->value.empty()) {
        const Param missing{{}, {}, orLogic->GetParamId(), {}};
        CompareParam(param != nullptr ? *param : missing, orLogic->GetLogic(), threshold, {}, sourceWord, sourceId);
        return Decide(Reason::NO_VALUE, false);
    }
    NoteReason(threshold.empty() ? Reason::NO_THRESHOLD : Reason::CONDITION_NOT_MET);
    NoteType(*param);
    return CompareParam(*param, orLogic->GetLogic(), threshold, param->value, sourceWord, sourceId);
}

bool CommandRuleEngine::IsFaultForSqlMultiLogic(const ParamList& list, const std::shared_ptr<OrLogic>& orLogic)
{
    NoteReason(Reason::CONDITION_NOT_MET);
    const OrLogic::LogicItemList& items = orLogic->GetLogicItemList();
    if (items.empty() || items.front() == nullptr) {
        Note(Reason::NO_CONDITION);
    }
    if (list.empty() || items.empty() || items.front() == nullptr) {
        return false;
    }
    // Compares all items with the parameter of the first: rule files write a range of one column that way.
    const auto param = GetParam(list, items.front()->GetParamId());
    if (param == nullptr || param->value.empty()) {
        const Param missing{{}, {}, items.front()->GetParamId(), {}};
        CompareParam(param != nullptr ? *param : missing, items.front()->GetLogic(), items.front()->GetValue(), {});
        return Decide(Reason::NO_VALUE, false);
    }
    NoteType(*param);
    for (const auto& item : items) {
        if (item == nullptr || !CompareParam(*param, item->GetLogic(), item->GetValue(), param->value)) {
            return false;
        }
    }
    return true;
}
