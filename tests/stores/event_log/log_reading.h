#ifndef ARBORIST_TESTS_STORES_EVENT_LOG_LOG_READING_H
#define ARBORIST_TESTS_STORES_EVENT_LOG_LOG_READING_H

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "arborist/stores/event_log/event_log_reader.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

/// A log of its own and the connection to it.
class LogReadingTest : public testing::Test {
protected:
    std::shared_ptr<const EventLogSnapshot> Read(const EventLogBuilder& builder)
    {
        builder.WriteTo(mPath);
        return ReadAgain();
    }

    std::shared_ptr<const EventLogSnapshot> ReadAgain()
    {
        mDatabase.Open(mPath);
        return ReadEventLog(mDatabase.GetHandle());
    }

    // "id: time time; id: ..." with "?" for ids that need a query of their own.
    static std::string RowsOf(const EventLogSnapshot& snapshot)
    {
        std::string text;
        for (std::size_t number = 0; number < snapshot.GetEntryCount(); ++number) {
            const EventLogSnapshot::Entry entry = snapshot.GetEntry(number);
            text += (text.empty() ? "" : "; ") + std::to_string(entry.eventId) + (entry.needsQuery ? "?" : ":");
            for (std::uint32_t row = entry.begin; row < entry.end; ++row) {
                text += " " + std::to_string(snapshot.GetTime(row));
            }
        }
        return text;
    }

    std::string RowsOf(const EventLogBuilder& builder)
    {
        const auto snapshot = Read(builder);
        return snapshot == nullptr ? "none" : RowsOf(*snapshot);
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("log.db");
    FT::sql::SqlDatabase mDatabase;
};

#endif
