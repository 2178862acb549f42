#ifndef ARBORIST_STORES_COMMON_PART_DERIVED_TABLE_STAGE_H
#define ARBORIST_STORES_COMMON_PART_DERIVED_TABLE_STAGE_H

#include <functional>
#include <string>

namespace FT::sql {
class SqlDatabase;
}

/// A table in memory that hides the one of the same name in the file, so that rows can be inserted without waiting for
/// the disk and then go into the file all at once.
///
/// Says nothing in the log: what fails has a line in the plain way, too, or none.
class DerivedTableStage {
public:
    /// `database` must outlive the stage.
    DerivedTableStage(FT::sql::SqlDatabase& database, std::string tableName);

    /// Makes the table by the statement that made the one in the file. False when that fails: rows go into the file.
    bool Open(const std::string& createSql);
    /// Moves all rows into the file by one statement. If that fails, hands `insertRow` a statement for each of them.
    /// The table in memory is gone afterwards.
    void Publish(const std::function<void(const std::string& statement)>& insertRow);

    /// For rows that must go into the file one by one: keeps a log written ahead, which makes a transaction cheap and
    /// leaves the file whole if the process ends in between. To be ended by false.
    static void WriteAhead(FT::sql::SqlDatabase& database, bool on);

private:
    FT::sql::SqlDatabase& mDatabase;
    std::string mTableName;
};

#endif
