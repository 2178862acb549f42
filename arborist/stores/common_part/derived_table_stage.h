#ifndef ARBORIST_STORES_COMMON_PART_DERIVED_TABLE_STAGE_H
#define ARBORIST_STORES_COMMON_PART_DERIVED_TABLE_STAGE_H

#include <functional>
#include <string>

namespace FT::sql {
class SqlDatabase;
}

/// A table in memory that hides the table of the same name in the file. Rows are inserted without waiting for the disk
/// and then moved into the file all at once.
///
/// Logs nothing: a row that fails here is inserted into the file itself, which logs its line.
class DerivedTableStage {
public:
    /// `database` must outlive the stage.
    DerivedTableStage(FT::sql::SqlDatabase& database, std::string tableName);

    /// Creates the table with `createSql`, the statement that created the one in the file. If it fails, returns false,
    /// and rows go into the file.
    bool Open(const std::string& createSql);
    /// Moves all rows into the file with one statement; if that fails, calls `insertRow` with a statement for each row.
    /// Drops the table in memory.
    void Publish(const std::function<void(const std::string& statement)>& insertRow);

    /// As long as it exists, write-ahead logging makes the transaction of a single row cheap; the file stays intact if
    /// the process dies in between. The end drops a transaction that is still open.
    class WriteAhead {
    public:
        explicit WriteAhead(FT::sql::SqlDatabase& database);
        ~WriteAhead();
        WriteAhead(const WriteAhead&) = delete;
        WriteAhead& operator=(const WriteAhead&) = delete;

    private:
        FT::sql::SqlDatabase& mDatabase;
    };

private:
    FT::sql::SqlDatabase& mDatabase;
    std::string mTableName;
};

#endif
