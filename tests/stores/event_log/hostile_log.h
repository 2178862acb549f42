#ifndef ARBORIST_TESTS_STORES_EVENT_LOG_HOSTILE_LOG_H
#define ARBORIST_TESTS_STORES_EVENT_LOG_HOSTILE_LOG_H

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "arborist/stores/event_log/alarm_rule_db_helper.h"
#include "tests/stores/event_log/number_question.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

/// A log that no service writes, asked in both ways: the results and log lines of a visit must equal those of one query
/// for each id.
class HostileLogTest : public testing::Test {
protected:
    static constexpr std::int32_t FIRST_ID = -1;
    static constexpr std::int32_t LAST_ID = 9;

    HostileLogTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::VERSION_NAME, "1.0");
    }

    struct Answers {
        /// "id count" for each id that has rows which count.
        std::vector<std::string> counts;
        std::vector<std::string> lines;
    };

    // "id count answers" of an id, with the answers sorted, as SQLite chooses the order of the rows.
    static std::string Told(std::int32_t id, std::size_t count, std::vector<std::int32_t> answers)
    {
        std::sort(answers.begin(), answers.end());
        std::string told = std::to_string(id) + " " + std::to_string(count);
        for (const std::int32_t answer : answers) {
            told += " " + std::to_string(answer);
        }
        return told;
    }

    Answers AskForEachId(std::int64_t start, bool fromUpdate, bool withTexts = false)
    {
        mLog.Clear();
        AlarmRuleDbHelper helper;
        Answers answers;
        for (std::int32_t id = FIRST_ID; id <= LAST_ID; ++id) {
            const auto events = helper.GetEventList(id, start, fromUpdate);
            if (!events.empty()) {
                std::vector<std::int32_t> texts;
                for (const auto& event : events) {
                    if (withTexts) {
                        texts.push_back(event->extra.empty() ? 0 : NumberQuestion::Of("a")->Answer(event->extra));
                    }
                }
                answers.counts.push_back(Told(id, events.size(), texts));
            }
        }
        answers.lines = mLog.Lines();
        return answers;
    }

    Answers VisitAll(std::int64_t start, bool fromUpdate, bool withTexts = false)
    {
        mLog.Clear();
        AlarmRuleDbHelper helper;
        Answers answers;
        EventRows::Questions questions;
        if (withTexts) {
            questions.push_back(NumberQuestion::Of("a"));
        }
        helper.VisitEvents({FIRST_ID, LAST_ID, start, fromUpdate, questions}, [&](const EventRows& rows) {
            if (rows.GetCount() != 0) {
                std::vector<std::int32_t> texts;
                if (withTexts) {
                    rows.ForEach([&texts](const EventRows::Row& row) { texts.push_back(row.Answer(0)); });
                }
                answers.counts.push_back(Told(rows.GetEventId(), rows.GetCount(), texts));
            }
            return false;
        });
        answers.lines = mLog.Lines();
        return answers;
    }

    void ExpectOneAnswer(std::int64_t start, bool fromUpdate, bool withTexts)
    {
        SCOPED_TRACE(testing::Message()
            << "start " << start << " from update " << fromUpdate << " with texts " << withTexts);
        const Answers plain = AskForEachId(start, fromUpdate, withTexts);
        const Answers fast = VisitAll(start, fromUpdate, withTexts);
        EXPECT_EQ(fast.counts, plain.counts);
        EXPECT_EQ(fast.lines, plain.lines);
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("data/Comms/Lumbra/workDir/0/log.db");
};

#endif
