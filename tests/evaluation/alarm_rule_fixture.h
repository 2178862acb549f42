#ifndef ARBORIST_TESTS_EVALUATION_ALARM_RULE_FIXTURE_H
#define ARBORIST_TESTS_EVALUATION_ALARM_RULE_FIXTURE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "tests/evaluation/alarm_rules.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

inline constexpr std::int64_t DAY = 86400;
inline constexpr std::int64_t NOW = 1700000000; // 14 November 2023, 23:13:20 in the zone of the tests
inline constexpr std::int32_t DMD = 920000001;

/// Asks alarm rules of an event log of their own.
class AlarmRuleFixture : public testing::Test {
protected:
    AlarmRuleFixture()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mSettings.Set(Settings::VERSION_NAME, "1");
    }

    void Log(const std::vector<LoggedRow>& rows) const
    {
        EventLogBuilder().Rows(rows).WriteTo(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"));
    }

    // Rows of one id, a day apart, the newest an hour old.
    static std::vector<LoggedRow> Days(std::size_t count, std::int64_t event, const std::string& extra = "")
    {
        std::vector<LoggedRow> rows;
        for (std::size_t row = 0; row < count; ++row) {
            rows.push_back({NOW - 3600 - static_cast<std::int64_t>(row) * DAY, event, "1", extra});
        }
        return rows;
    }

    bool Fires(const std::shared_ptr<Rule>& rule)
    {
        const auto helper = std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr);
        AlarmRuleEngine engine(helper);
        engine.SetRecord(&mRecord);
        const bool fires = engine.IsFaultHappened(rule, "event");
        mReason = engine.GetReason();
        return fires;
    }
    bool Fires(const Ids& item) { return Fires(RuleOf({item})); }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    Evidence::Rule mRecord;
    Evidence::Reason mReason = Evidence::Reason::NONE;
};

#endif
