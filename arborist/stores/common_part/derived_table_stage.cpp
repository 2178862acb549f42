#include "arborist/stores/common_part/derived_table_stage.h"

#include <new>
#include <string_view>
#include <utility>

#include "arborist/frame/stopping.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_database.h"

namespace {

constexpr std::string_view CREATE_TABLE = "CREATE TABLE ";

bool RunQuietly(const FT::sql::SqlDatabase& database, const std::string& statement)
{
    FT::sql::SqlCursor cursor(database.GetHandle(), statement);
    while (cursor.Step()) {
    }
    return cursor.IsOk();
}

} // namespace

DerivedTableStage::DerivedTableStage(FT::sql::SqlDatabase& database, std::string tableName)
    : mDatabase(database), mTableName(std::move(tableName))
{
}

bool DerivedTableStage::Open(const std::string& createSql)
{
    return createSql.rfind(CREATE_TABLE, 0) == 0 && mDatabase.KeepTemporaryTablesInMemory() &&
        RunQuietly(mDatabase, "CREATE TEMP TABLE " + createSql.substr(CREATE_TABLE.size()));
}

void DerivedTableStage::Publish(const std::function<void(const std::string& statement)>& insertRow)
{
    const std::string publish = "insert into main." + mTableName + " select * from temp." + mTableName;
    if (!RunQuietly(mDatabase, publish)) {
        // Another process reads, or the disk is full. Insert the rows one by one, so that a failure costs a single row.
        FT::sql::SqlCursor ids(mDatabase.GetHandle(), "select _ID from temp." + mTableName);
        while (ids.Step()) {
            insertRow(publish + " where _ID = " + std::to_string(ids.GetInteger(0)));
        }
    }
    RunQuietly(mDatabase, "drop table temp." + mTableName);
}

DerivedTableStage::WriteAhead::WriteAhead(FT::sql::SqlDatabase& database) : mDatabase(database)
{
    const StopScope unstoppable(nullptr);
    RunQuietly(mDatabase, "PRAGMA locking_mode=EXCLUSIVE");
    RunQuietly(mDatabase, "PRAGMA journal_mode=WAL");
}

DerivedTableStage::WriteAhead::~WriteAhead()
{
    const StopScope unstoppable(nullptr);
    try {
        RunQuietly(mDatabase, "ROLLBACK"); // fails without an open transaction, as it mostly is
        RunQuietly(mDatabase, "PRAGMA journal_mode=DELETE");
        RunQuietly(mDatabase, "PRAGMA locking_mode=NORMAL");
    } catch (const std::bad_alloc&) {
        // Whoever closes the database next finishes it: SQLite itself rolls back, and reads both kinds of journal.
    }
}
