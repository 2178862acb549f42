#ifndef ARBORIST_TESTS_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_FIXTURE_H
#define ARBORIST_TESTS_STORES_EVENT_LOG_ALARM_RULE_DB_HELPER_FIXTURE_H

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "arborist/stores/event_log/alarm_rule_db_helper.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

/// The line that the first query of a log of version 1.0 logs.
inline constexpr char VERSION_LINE[] = "FUNc:AlarmRuleDbHelper::GetEventList: version name: 1.0";

/// A data folder with an event log of version 1.0, and functions that format a helper's answers as one line.
class AlarmRuleDbHelperTest : public testing::Test {
protected:
    AlarmRuleDbHelperTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::VERSION_NAME, "1.0");
    }

    void Write(const EventLogBuilder& builder) const { builder.WriteTo(mPath); }

    // The extras of the events, joined.
    static std::string Extras(const AlarmRuleDbHelper::EventList& events)
    {
        std::string text;
        for (const auto& event : events) {
            text += event->extra;
        }
        return text;
    }

    // "id found/count" for each id that is visited, up to and with `stopAt`.
    static std::string Visit(AlarmRuleDbHelper& helper, const AlarmRuleDbHelper::Query& query, std::int32_t stopAt = 0)
    {
        std::string text;
        const auto reading = helper.VisitEvents(query, [&](const EventRows& rows) {
            text += (text.empty() ? "" : ", ") + std::to_string(rows.GetEventId()) + " " +
                std::to_string(rows.GetFoundCount()) + "/" + std::to_string(rows.GetCount());
            return rows.GetEventId() == stopAt;
        });
        return reading == AlarmRuleDbHelper::Reading::UNREADABLE ? "unreadable " + text : text;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("data/Comms/Lumbra/workDir/0/log.db");
};

#endif
