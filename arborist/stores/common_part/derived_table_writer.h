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

/// Puts rows into one table of the derived database, each in a transaction of its own: a bad row costs only itself.
///
/// A transaction on a file waits for the disk. So the rows go, as a rule, through a DerivedTableStage. Where that could
/// make a difference they go into the file one by one: what a rule set or an event says ends up in the statements as it
/// stands.
class DerivedTableWriter {
public:
    using ParamList = std::vector<std::shared_ptr<Param>>;

    /// The table exists in `database`, which must outlive the writer; `createSql` is the statement that made it. A
    /// parameter's key is the name of a column; null parameters and empty keys count for none.
    DerivedTableWriter(
        FT::sql::SqlDatabase& database, std::string tableName, const ParamList& params, std::string createSql);

    /// Inserts the rows in order. Members that are no column fall away, names compared in lower case; a row that is
    /// left without members is passed over. What fails logs a line and is passed over.
    void Write(const std::vector<Json::Value>& rows);

private:
    /// Literals by column name.
    using ValueMap = std::map<std::string, std::string>;

    void GetColumnNames(const ParamList& params);
    void UpdateValuesOfSetDataToTable(const Json::Value& row, ValueMap& values) const;
    using Insert = void (DerivedTableWriter::*)(const std::string& statement);

    void InsertAll(const std::vector<Json::Value>& rows, Insert insert);
    // In a transaction, which RunInsert leaves to the statement.
    void InsertRow(const std::string& statement);
    void RunInsert(const std::string& statement);
    std::string InsertStatement(const ValueMap& values) const;
    bool CanBeStaged(const std::vector<Json::Value>& rows) const;

    FT::sql::SqlDatabase& mDatabase;
    std::string mTableName;
    std::string mCreateSql;
    std::unordered_set<std::string, TextHash> mColumns;
    bool mHasPlainColumns = true;
};

#endif
