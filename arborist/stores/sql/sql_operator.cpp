#include "arborist/stores/sql/sql_operator.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include <sqlite3.h>

#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "arborist/frame/trouble_watch.h"

namespace FT::sql {

// The log formats in which the two ways to run a statement differ. A host's logger receives them as they are.
struct SqlOperator::KeepingRows {
    static constexpr char FUNCTION[] = "FT::sql::SqlOperator::Execute";
    static constexpr char NO_DATABASE[] = "FUNc:%s: Execute db is null";
    static constexpr char NO_WORDS[] = "FUNc:%s: Execute error returns null";
    static constexpr char FAILED[] = "FUNc:%s: Execute sql failed: %s";
};

struct SqlOperator::WithoutRows {
    static constexpr char FUNCTION[] = "FT::sql::SqlOperator::ExecuteNoCallback";
    static constexpr char NO_DATABASE[] = "FUNc:%s: ExecuteNoCallback db is null";
    static constexpr char NO_WORDS[] = "FUNc:%s: ExecuteNoCallback error returns null";
    static constexpr char FAILED[] = "FUNc:%s: ExecuteNoCallback sql failed: %s";
};

SqlOperator::SqlOperator(const Sqlite3Db& database) : SqlOperator(database, nullptr, nullptr) {}

SqlOperator::SqlOperator(const Sqlite3Db& database, const FieldList* list, const FieldMap* map)
    : db(database), fieldList(list), fieldMap(map)
{
}

SqlOperator::~SqlOperator()
{
    Clear();
}

bool SqlOperator::Execute(const std::string& sql)
{
    return Run<KeepingRows>(sql, &SqlOperator::LoadRecord);
}

bool SqlOperator::ExecuteNoCallback(const std::string& sql)
{
    return Run<WithoutRows>(sql, nullptr);
}

template <typename Way>
bool SqlOperator::Run(const std::string& sql, RowCallback callback)
{
    Clear();
    if (db.connection == nullptr) {
        Log::GetInstance().Output(LEVEL_ERROR, Way::NO_DATABASE, Way::FUNCTION);
        return false;
    }
    StopPoint::Pass();
    char* errorText = nullptr;
    db.budget->StartText();
    resultCode = sqlite3_exec(db.connection, sql.c_str(), callback, callback == nullptr ? nullptr : this, &errorText);
    const std::unique_ptr<char, void (*)(void*)> owned(errorText, sqlite3_free);
    if (IsOk()) {
        return true;
    }
    if (errorText == nullptr) { // there was no memory for the words either
        Log::GetInstance().Output(LEVEL_ERROR, Way::NO_WORDS, Way::FUNCTION);
        errorMessage = sqlite3_errstr(resultCode);
        StatementTrouble::Tell(errorMessage, db.path);
        return false;
    }
    errorMessage = errorText;
    StopPoint::Pass(); // the failure may be the stop's, and then belongs into no log
    if (!errorMessage.empty()) {
        Log::GetInstance().Output(LEVEL_ERROR, Way::FAILED, Way::FUNCTION, errorMessage.c_str());
        StatementTrouble::Tell(errorMessage, db.path);
    }
    return false;
}

int SqlOperator::LoadRecord(void* context, int columnCount, char** columnTexts, char**)
{
    auto* const self = static_cast<SqlOperator*>(context);
    if (self == nullptr || self->fieldList == nullptr || self->fieldMap == nullptr || columnTexts == nullptr) {
        return 0;
    }
    if (self->IsFull(columnCount, columnTexts)) {
        return 1;
    }
    try {
        self->KeepRow(columnCount, columnTexts);
    } catch (const std::bad_alloc&) {
        return 1; // no exception may pass through SQLite; the statement fails instead
    }
    return 0;
}

bool SqlOperator::IsFull(int columnCount, char** columnTexts)
{
    if (!db.budget->GetLimits().has_value()) {
        return false;
    }
    for (int column = 0; column < columnCount; ++column) {
        keptBytes += columnTexts[column] == nullptr ? 0 : std::strlen(columnTexts[column]);
    }
    return records.size() >= db.budget->GetLimits()->rows || !db.budget->AllowsBytes(keptBytes);
}

void SqlOperator::KeepRow(int columnCount, char** columnTexts)
{
    SqlRecord& record = records.emplace_back(fieldMap);
    record.InitColumnCount(static_cast<std::size_t>(columnCount));
    const std::size_t filled = std::min(static_cast<std::size_t>(columnCount), fieldList->size());
    for (std::size_t position = 0; position < filled; ++position) {
        const SqlField* const field = (*fieldList)[position];
        if (field != nullptr) {
            const char* const text = columnTexts[position];
            record.InitColumnValue(position, text == nullptr ? std::string() : std::string(text), field->GetType());
        }
    }
}

const SqlRecord* SqlOperator::GetRecord(std::uint64_t index) const
{
    return index < records.size() ? &records[static_cast<std::size_t>(index)] : nullptr;
}

const SqlRecord* SqlOperator::GetTopRecord() const
{
    return IsOk() ? GetRecord(0) : nullptr;
}

const SqlValue* SqlOperator::GetTopRecordFirstValue() const
{
    const SqlRecord* const top = GetTopRecord();
    return top == nullptr ? nullptr : top->GetValue(std::size_t{0});
}

void SqlOperator::Clear()
{
    errorMessage.clear();
    resultCode = 1;
    records.clear();
    keptBytes = 0;
}

} // namespace FT::sql
