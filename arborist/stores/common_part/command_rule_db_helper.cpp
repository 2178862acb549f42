#include "arborist/stores/common_part/command_rule_db_helper.h"

#include <cstdlib>
#include <string_view>
#include <utility>

#include "arborist/frame/evidence.h"
#include "arborist/frame/stopping.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/common_part/lower_case.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/stores/sql/sql_table.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/string_util.h"

namespace {

constexpr std::int64_t SECONDS_OF_DAY = 86400;
constexpr int NORMAL_DAYS = 30;

FT::sql::FieldType FieldTypeOf(const std::string& type)
{
    if (type == "string") {
        return FT::sql::TypeText;
    }
    if (type == "int" || type == "long") {
        return FT::sql::TypeInteger;
    }
    return type == "float" || type == "double" ? FT::sql::TypeReal : FT::sql::TypeNone;
}

std::vector<FT::sql::SqlField> FieldsOf(const CommandRuleDbHelper::ParamList& params,
    const std::shared_ptr<Param>& first, const std::shared_ptr<Param>& second)
{
    std::vector<FT::sql::SqlField> fields;
    fields.reserve(params.size() + 3);
    for (const auto& param : params) {
        if (param != nullptr) {
            fields.emplace_back(param->key, FieldTypeOf(param->type));
        }
    }
    for (const auto& param : {first, second}) {
        if (param != nullptr) {
            fields.emplace_back(param->key, FT::sql::TypeInteger);
        }
    }
    fields.emplace_back(FT::sql::FieldUseEnd);
    return fields;
}

std::string GetRecordParamAsStr(const FT::sql::SqlRecord& record, const Param& param)
{
    const FT::sql::SqlValue* const value = record.GetValue(param.key);
    return value == nullptr ? "" : value->AsString();
}

std::int64_t GetRecordInterval(const FT::sql::SqlRecord& record, const std::shared_ptr<Param>& param)
{
    const FT::sql::SqlValue* const value = param == nullptr ? nullptr : record.GetValue(param->key);
    return value == nullptr ? 0 : value->AsInteger();
}

std::uint64_t Distance(std::int64_t start, std::int64_t end)
{
    const auto low = static_cast<std::uint64_t>(start < end ? start : end);
    const auto high = static_cast<std::uint64_t>(start < end ? end : start);
    return high - low;
}

// Calculates in 32 bits and wraps on overflow: thresholds of rule sets rely on it.
std::int32_t ScaledTo30Days(std::int32_t value, std::uint64_t days)
{
    const std::uint32_t product = static_cast<std::uint32_t>(value) * static_cast<std::uint32_t>(NORMAL_DAYS);
    const auto divisor = static_cast<std::int32_t>(static_cast<std::uint32_t>(days) + 1U);
    const auto dividend = static_cast<std::int32_t>(product);
    if (divisor == 0) {
        return 0;
    }
    return static_cast<std::int32_t>(std::int64_t{dividend} / divisor);
}

// Empty for a type that is not scaled.
std::string ScaledText(const std::string& type, const std::string& text, std::uint64_t days)
{
    if (type == "int" || type == "long") {
        return std::to_string(ScaledTo30Days(StringUtil::StringToInt32Def(text, 0, 10), days));
    }
    if (type == "float") {
        const float value = StringUtil::StringToFloatDef(text, 0);
        return StringUtil::FixedText(value * static_cast<float>(NORMAL_DAYS) / static_cast<float>(days + 1));
    }
    if (type == "double") {
        const double value = StringUtil::StringToDoubleDef(text, 0);
        return StringUtil::FixedText(value * NORMAL_DAYS / static_cast<double>(days + 1));
    }
    return "";
}

void NoteColumn(Evidence::Statement* record, const Param& param, const std::string& raw)
{
    if (record != nullptr) {
        record->columns.push_back({param.id, param.key, param.type, raw, param.value});
    }
}

// True for a single select, which leaves no state on its connection.
bool IsPlainSelect(const std::string& sql)
{
    constexpr std::string_view SELECT = "select";
    const std::size_t start = sql.find_first_not_of(" \t\r\n");
    return start != std::string::npos && LowerCase(sql.substr(start, SELECT.size())) == SELECT &&
        sql.find(';') == std::string::npos;
}

} // namespace

bool CommandRuleDbHelper::IsOpenDbSuccess(const std::string& path)
{
    const std::string file = path.empty() ? DevicePaths::DerivedDatabase() : path;
    const FT::sql::SqlDatabase* const kept = mConnection.Find(file);
    if (kept != nullptr && kept->IsOpen()) {
        return true;
    }
    FT::sql::SqlDatabase& database = mConnection.Make(file);
    database.Open(file);
    database.Restrict(FT::sql::SqlAccess::OWN_FILE);
    return database.IsOpen();
}

CommandRuleDbHelper::ParamList CommandRuleDbHelper::RunSql(const std::string& sql, const ParamList& params,
    bool isNormalization, const std::shared_ptr<Param>& first, const std::shared_ptr<Param>& second,
    Evidence::Statement* record)
{
    FT::sql::SqlDatabase& database = mConnection.Get();
    database.Limit(mLimits.Of(sql));
    std::vector<FT::sql::SqlField> fields = FieldsOf(params, first, second);
    // Only provides the fields: no table of that name exists.
    FT::sql::SqlTable table(database.GetHandle(), "tmp_table", fields.data(), fields.size());
    const StatementTrouble inRecord(std::nullopt);
    try {
        mRowCount = FT::sql::SimpleDatabaseHelper().GetRecordCountByFullSql(table, sql);
    } catch (const DetectionStopped&) {
        database.Close(); // a text of several statements may have left a transaction or a table of its own
        throw;
    }
    if (record != nullptr) {
        record->database = mConnection.GetPath();
        record->opened = database.IsOpen();
        record->rows = table.GetRecordCount();
        record->error = table.GetErrorMessage();
    }
    mHasFailed = !table.IsOk();
    mIsIntervalMissing = false;
    ParamList result;
    const FT::sql::SqlRecord* const row = table.GetTopRecord();
    if (mRowCount == 1 && row != nullptr) {
        result = isNormalization ? UpdateParamListOfNormalization(params, *row, first, second, record)
                                 : UpdateParamList(params, *row, record);
    }
    mLimits.LowerAfter(sql, *database.GetHandle().budget);
    // Close after a failure, so that opening a file that can't be read logs its line again for the next statement.
    if (!table.IsOk() || !IsPlainSelect(sql)) {
        database.Close();
    }
    return result;
}

CommandRuleDbHelper::ParamList CommandRuleDbHelper::UpdateParamList(
    const ParamList& params, const FT::sql::SqlRecord& row, Evidence::Statement* record)
{
    ParamList result;
    for (const auto& param : params) {
        if (param != nullptr) {
            param->value = GetRecordParamAsStr(row, *param);
            NoteColumn(record, *param, param->value);
            result.push_back(std::make_shared<Param>(*param));
        }
    }
    return result;
}

CommandRuleDbHelper::ParamList CommandRuleDbHelper::UpdateParamListOfNormalization(const ParamList& params,
    const FT::sql::SqlRecord& row, const std::shared_ptr<Param>& first, const std::shared_ptr<Param>& second,
    Evidence::Statement* record)
{
    const std::int64_t start = GetRecordInterval(row, first);
    const std::int64_t end = GetRecordInterval(row, second);
    const std::uint64_t days = Distance(start, end) / static_cast<std::uint64_t>(SECONDS_OF_DAY);
    // An interval of one second counts as missing, too: rule sets rely on it.
    mIsIntervalMissing = start == 0 || end == 0 || Distance(start, end) == 1;
    if (record != nullptr) {
        record->interval = {first == nullptr ? std::string() : first->key,
            second == nullptr ? std::string() : second->key, start, end, days, !mIsIntervalMissing};
    }
    return mIsIntervalMissing ? ParamList() : GenerateParamListOfNormalization(params, row, days, record);
}

CommandRuleDbHelper::ParamList CommandRuleDbHelper::GenerateParamListOfNormalization(
    const ParamList& params, const FT::sql::SqlRecord& row, std::uint64_t days, Evidence::Statement* record)
{
    ParamList result;
    for (const auto& param : params) {
        if (param == nullptr || param->type == "string") {
            continue;
        }
        const std::string raw = GetRecordParamAsStr(row, *param);
        std::string scaled = raw.empty() ? "" : ScaledText(param->type, raw, days);
        if (!scaled.empty()) {
            param->value = std::move(scaled);
        }
        NoteColumn(record, *param, raw);
        result.push_back(param);
    }
    return result;
}
