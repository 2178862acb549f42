#ifndef ARBORIST_STORES_COMMON_PART_COMMAND_RULE_DB_HELPER_H
#define ARBORIST_STORES_COMMON_PART_COMMAND_RULE_DB_HELPER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arborist/model/condition.h"
#include "arborist/stores/kept_connection.h"
#include "arborist/stores/sql/sql_database.h"

namespace Evidence {
struct Statement;
}

namespace FT::sql {
class SqlRecord;
}

/// Runs the SQL text of a command rule on one database and reads the one row that comes back into parameters.
///
/// Open first, then run. One database at a time, one thread.
class CommandRuleDbHelper {
public:
    using ParamList = std::vector<std::shared_ptr<Param>>;

    /// Opens a database file, which SQLite creates when it is missing; the empty path stands for the derived database.
    /// False, with a line, when it can't be opened.
    bool IsOpenDbSuccess(const std::string& path);

    /// Runs `sql` and writes the values of its one row, by the keys of the parameters in their order, into the
    /// parameters themselves. Empty, and nothing written, when the statement fails or gives another number of rows.
    ///
    /// Plain: copies of the parameters, with their values. Normalised: the parameters themselves, numbers scaled from
    /// the days between the columns of `first` and `second` to 30 days, texts left out; empty when one of the two
    /// columns is 0 or they are one second apart.
    ///
    /// `record`, if there is one, is told the database, the rows and the values.
    ParamList RunSql(const std::string& sql, const ParamList& params, bool isNormalization,
        const std::shared_ptr<Param>& first, const std::shared_ptr<Param>& second,
        Evidence::Statement* record = nullptr);

    /// Rows that the last statement gave.
    std::uint64_t GetRowCount() const { return mRowCount; }
    /// Whether the last RunSql had a row whose values it could not scale.
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
    FT::sql::SqlLimits mLimits;
    std::uint64_t mRowCount = 0;
    bool mIsIntervalMissing = false;
};

#endif
