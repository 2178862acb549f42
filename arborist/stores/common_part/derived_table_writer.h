#ifndef ARBORIST_STORES_COMMON_PART_DERIVED_TABLE_WRITER_H
#define ARBORIST_STORES_COMMON_PART_DERIVED_TABLE_WRITER_H

#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "arborist/model/condition.h"
#include "arborist/utilities/text_hash.h"

namespace FT::sql {
class SqlDatabase;
}

namespace Json {
class Value;
}

/// Inserts rows into one table of the derived database, each in a transaction of its own: a bad row affects no other.
///
/// As a transaction on a file waits for the disk, rows usually go through a DerivedTableStage. If that could change the
/// result, they are inserted into the file one by one: texts of rule sets and events are part of the statements and may
/// be SQL.
class DerivedTableWriter {
public:
    using ParamList = std::vector<std::shared_ptr<Param>>;

    /// The table must exist in `database`, which must outlive the writer; `createSql` is the statement that created it.
    /// The keys of the parameters are the columns; null parameters and empty keys are ignored.
    DerivedTableWriter(
        FT::sql::SqlDatabase& database, std::string tableName, const ParamList& params, std::string createSql);

    /// Inserts the rows in order. Ignores members that are no columns, comparing names in lower case, and skips a row
    /// without any other members. A row that fails logs a line and is skipped.
    void Write(const std::vector<Json::Value>& rows);

    /// The column that was left to its default as the value in a row can't be used: a boolean, a list or an object; the
    /// last of several. Empty if there is none.
    const std::string& GetColumnLeftOut() const { return mColumnLeftOut; }

private:
    /// Literals by column name.
    using ValueMap = std::map<std::string, std::string>;

    void GetColumnNames(const ParamList& params);
    void UpdateValuesOfSetDataToTable(const Json::Value& row, ValueMap& values);
    using Insert = void (DerivedTableWriter::*)(const std::string& statement);

    void InsertAll(const std::vector<Json::Value>& rows, Insert insert);
    // Runs the statement in an explicit transaction; RunInsert relies on that of the statement itself.
    void InsertRow(const std::string& statement);
    void RunInsert(const std::string& statement);
    std::string InsertStatement(const ValueMap& values) const;
    bool CanBeStaged(const std::vector<Json::Value>& rows) const;

    FT::sql::SqlDatabase& mDatabase;
    std::string mTableName;
    std::string mCreateSql;
    std::unordered_set<std::string, TextHash> mColumns;
    bool mHasPlainColumns = true;
    std::string mColumnLeftOut;
};

#endif
