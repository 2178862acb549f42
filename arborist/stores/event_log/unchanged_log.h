#ifndef ARBORIST_STORES_EVENT_LOG_UNCHANGED_LOG_H
#define ARBORIST_STORES_EVENT_LOG_UNCHANGED_LOG_H

#include <memory>
#include <utility>

#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/log_state.h"

/// A transaction in which the log is in the state of a snapshot, so that more can be read about the snapshot's rows. Shares
/// ownership of the snapshot.
class UnchangedLog {
public:
    using Snapshot = std::shared_ptr<const EventLogSnapshot>;

    /// Null if the log has changed since the snapshot was read.
    static std::unique_ptr<const UnchangedLog> Open(const FT::sql::Sqlite3Db& database, const Snapshot& snapshot);
    /// True if the log has not changed, and the snapshot has all its rows up to the last moment that counts; it may
    /// have later ones. False for a null snapshot.
    static bool IsIn(const FT::sql::Sqlite3Db& database, const Snapshot& snapshot);

    const FT::sql::Sqlite3Db& GetDatabase() const { return mDb; }
    const EventLogSnapshot& GetSnapshot() const { return *mSnapshot; }

private:
    UnchangedLog(const FT::sql::Sqlite3Db& database, Snapshot snapshot)
        : mDb(database), mTransaction(database), mSnapshot(std::move(snapshot))
    {
    }

    const FT::sql::Sqlite3Db& mDb;
    ReadTransaction mTransaction;
    Snapshot mSnapshot;
};

#endif
