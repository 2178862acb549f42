#ifndef ARBORIST_DIAGNOSIS_REDACTION_LOG_COPY_H
#define ARBORIST_DIAGNOSIS_REDACTION_LOG_COPY_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/sqlite/connection.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis {

/// A row of event_info whose "extra" can be replaced.
struct LoggedExtra {
    /// Nothing for an event that is no whole number.
    std::optional<std::int64_t> event;
    /// As text; empty for null.
    std::string extra;
};

/// The text in place of the "extra" of a row; nothing if the value stays as it is.
using NewExtra = std::function<std::optional<std::string>(const LoggedExtra& row)>;

/// Writes a new event log that has nothing of the old file but the columns that readers of a log know, of its three
/// tables, row by row in their types: no other table, no trigger and no free page, in which old values could remain.
/// Indexes on these columns are made anew, as the order of rows depends on them.
class LogCopy {
public:
    /// Copies the log at `source` to `target`, which must not exist.
    std::optional<Failure> Run(const std::string& source, const std::string& target, const NewExtra& newExtra);

    /// How many other tables and views the log has, which are left out.
    std::uint64_t OtherTables() const { return mOtherTables; }

private:
    struct Column {
        std::string name;
        std::string declaration;
    };

    bool Open(const std::string& target);
    bool CopyTable(const std::string& table, const std::vector<std::string>& wanted, const NewExtra& newExtra);
    std::vector<Column> ColumnsOf(const std::string& table, const std::vector<std::string>& wanted);
    bool CopyRows(const std::string& table, const std::vector<Column>& columns, const NewExtra& newExtra);
    bool BindRow(const Statement& row, const std::vector<Column>& columns, const NewExtra& newExtra, Statement& insert);
    bool CopyIndexes(const std::string& table, const std::vector<Column>& columns);
    void CountOtherTables();

    ReadOnlyDatabase mLog;
    Connection* mSource = nullptr; // that of mLog
    Connection mTarget;
    std::uint64_t mBytesLeft = 0;
    std::uint64_t mIndexes = 0;
    std::uint64_t mOtherTables = 0;
};

} // namespace diagnosis

#endif
