#ifndef ARBORIST_STORES_COMMON_PART_COMMAND_RULE_DB_HELPER_H
#define ARBORIST_STORES_COMMON_PART_COMMAND_RULE_DB_HELPER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arborist/model/condition.h"
#include "arborist/stores/common_part/text_limits.h"
#include "arborist/stores/kept_connection.h"
#include "arborist/stores/sql/sql_database.h"

namespace Evidence {
struct Statement;
}

namespace FT::sql {
class SqlRecord;
}

/// Runs the SQL text of a command rule on one database and stores the single row of its result in parameters.
///
/// Call IsOpenDbSuccess first, then RunSql. One database at a time; not thread-safe.
class CommandRuleDbHelper {
public:
    using ParamList = std::vector<std::shared_ptr<Param>>;

    /// Opens a database file; SQLite creates a missing one. An empty path means the derived database. False, with a
    /// line, if it can't be opened.
    bool IsOpenDbSuccess(const std::string& path);

    /// Runs `sql` and writes the values of its single row into `params`, assigning columns to keys in order. A statement
    /// that fails behind its only row counts as one with this row. Returns an empty list and writes nothing if there is no
    /// row, or more than one.
    ///
    /// Without normalisation returns copies of the parameters with their values. With it returns the parameters
    /// themselves, without texts, and with numbers scaled to 30 days from the days between the columns of `first` and
    /// `second`; empty if one of these is 0 or they differ by one second.
    ///
    /// Fills database, rows and values into `record` if it is not null.
    ParamList RunSql(const std::string& sql, const ParamList& params, bool isNormalization,
        const std::shared_ptr<Param>& first, const std::shared_ptr<Param>& second,
        Evidence::Statement* record = nullptr);

    /// Closes the database, which otherwise stays open until another one is opened: Windows removes no file that is open.
    void Close() { mConnection.Close(); }

    /// True if the database refused the last statement, at once or on the way.
    bool HasFailed() const { return mHasFailed; }
    /// Number of rows of the last statement.
    std::uint64_t GetRowCount() const { return mRowCount; }
    /// True if the last RunSql had a row but could not scale its values.
    bool IsIntervalMissing() const { return mIsIntervalMissing; }

private:
    friend struct CommandRuleDbHelperPeer; // tests set the limits through it

    static ParamList UpdateParamList(
        const ParamList& params, const FT::sql::SqlRecord& row, Evidence::Statement* record);
    ParamList UpdateParamListOfNormalization(const ParamList& params, const FT::sql::SqlRecord& row,
        const std::shared_ptr<Param>& first, const std::shared_ptr<Param>& second, Evidence::Statement* record);
    static ParamList GenerateParamListOfNormalization(const ParamList& params, const FT::sql::SqlRecord& row,
        std::uint64_t days, Evidence::Statement* record);

    KeptConnection<FT::sql::SqlDatabase> mConnection;
    TextLimits mLimits;
    std::uint64_t mRowCount = 0;
    bool mIsIntervalMissing = false;
    bool mHasFailed = false;
};

#endif
