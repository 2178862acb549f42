// Alarm rules are answered from one reading of the log. Here random rules over random logs are answered a second way.

#include <random>

#include <gtest/gtest.h>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "tests/evaluation/alarm_rules.h"
#include "tests/evaluation/plain_alarm.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;

class AlarmProperty : public testing::TestWithParam<unsigned int> {
protected:
    AlarmProperty()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mSettings.Set(Settings::VERSION_NAME, "1");
    }

    int Below(int limit) { return static_cast<int>(mRandom() % static_cast<unsigned int>(limit)); }
    template <typename Choices>
    auto OneOf(const Choices& choices) { return choices[mRandom() % std::size(choices)]; }

    std::string Extra()
    {
        static const char* const extras[] = {"", "{}", "{\"a\":1}", "{\"a\":2,\"b\":\"x\"}", "{\"b\":\"y\",\"a\":\"3\"}",
            "{\"a\":2.5}", "{\"a\":{}}", "[1]", "{\"a\":", "{\"COUNT\":3}", "{\"COUNT\":\"2\"}", "{\"COUNT\":-1}",
            "{\"COUNT\":\"x\"}", "{\"a\":4294967297}", "{\"b\":true}", "{\"a\":\"\\u0031\"}", "{\"a\":1,\"a\":2}"};
        // Few values and many, small and large.
        static const int limits[] = {9, 9, 300, 100000};
        const std::string sign = mRandom() % 4 == 0 ? "-" : "";
        return mRandom() % 3 != 0 ? OneOf(extras)
                                  : "{\"a\":" + sign + std::to_string(1 + Below(OneOf(limits))) + ",\"b\":\"" +
                std::to_string(Below(OneOf(limits))) + "y\"}";
    }

    void WriteLog()
    {
        static const char* const versions[] = {"1", "1", "2", "3", ""};
        EventLogBuilder builder;
        const bool isInOrder = mRandom() % 2 == 0;
        std::int64_t time = NOW - 70 * DAY;
        for (int row = Below(400); row > 0; --row) {
            time = isInOrder ? time + Below(40000) : NOW - Below(70 * 86400);
            const std::int64_t event = mRandom() % 4 == 0 ? 920000000 + Below(4) : 1 + Below(12);
            builder.Row({time, event, OneOf(versions), Extra()});
        }
        for (int change = Below(4); change > 0; --change) {
            static const char* const changes[] = {"update event_info_flow set occurrence_time = 'x' where _ID = ",
                "update event_info_flow set occurrence_time = null where _ID = ",
                "update event_info_flow set occurrence_time = 1699000000.5 where _ID = ",
                "update event_info set event_id = null where _ID = ", "update event_info set event_id = 'x' where _ID = ",
                "update event_info set extra = null where _ID = ", "update event_info set extra = 17 where _ID = ",
                "update event_info set version_id = 77 where _ID = ", "delete from event_info_flow where _ID = ",
                "update event_info set event_id = 5000000001 where _ID = "};
            builder.Sql(OneOf(changes) + std::to_string(1 + Below(100)));
        }
        builder.WriteTo(mPath);
    }

    Ids Item()
    {
        static const char* const words[] = {"1", "2", "3", "4"};
        const int first = Below(8) == 0 ? 920000000 : Below(13);
        Ids ids(std::to_string(first), std::to_string(first + Below(10)));
        ids.Begin(OneOf(words));
        if (Below(3) != 0) {
            ids.Duration(Below(60), Below(20) - 1);
        }
        if (Below(3) != 0) {
            ids.DailyPeak(Below(60), Below(8) - 1);
        }
        if (Below(3) != 0) {
            ids.Latest(Below(60), Below(20) - 1);
        }
        return Below(2) == 0 ? ids : WithTests(ids);
    }

    Ids WithTests(Ids ids)
    {
        static const char* const types[] = {"int", "long", "float", "double", "string"};
        static const char* const logics[] = {"gt", "lt", "le", "ge", "eq", "ne"};
        static const char* const values[] = {"0", "1", "2", "3.5", "x", "", "5", "1y", "-2", "150", "40000"};
        static const char* const params[] = {"p", "q", "r"};
        ids.WithParam("p", "a", OneOf(types)).WithParam("q", "b", OneOf(types));
        for (int condition = Below(3); condition >= 0; --condition) {
            if (Below(2) == 0) {
                ids.Single(OneOf(params), OneOf(logics), OneOf(values));
                continue;
            }
            std::vector<Ids::Test> tests;
            for (int test = Below(4); test > 0; --test) {
                tests.push_back({OneOf(params), OneOf(logics), OneOf(values)});
            }
            ids.Multiple(tests);
        }
        return ids;
    }

    // The ids of 1 to 12 with at least `threshold` rows since `start`, by one statement over the file.
    bool HasIdWithRows(int first, int last, std::int64_t start, int threshold) const
    {
        FT::sql::SqlDatabase database;
        database.Open(mPath);
        FT::sql::SqlField field("ids", FT::sql::TypeInteger);
        FT::sql::SqlTable table(database.GetHandle(), "ids", &field, 1);
        table.Query("select count(*) from (select event_id from event_info i join event_info_flow f on i._ID = f._ID "
            "join event_version v on i.version_id = v._ID where event_id between " + std::to_string(first) + " and " +
            std::to_string(last) + " and occurrence_time >= " + std::to_string(start) +
            " group by event_id having count(*) >= " + std::to_string(threshold) + ")");
        return table.GetTopRecord()->GetValue("ids")->AsInteger() > 0;
    }

    std::shared_ptr<RuleHelper> mHelper = std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr);
    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("data/Comms/Lumbra/workDir/0/log.db");
    std::mt19937 mRandom{GetParam()};
};

TEST_P(AlarmProperty, AnswersAndLogLinesAreThoseOfAQueryForEachId)
{
    WriteLog();
    AlarmRuleEngine engine(mHelper);
    PlainAlarm plain(mHelper);
    // Rules that were announced may run or not, and rules that run may have been announced or not.
    std::vector<std::shared_ptr<AlarmRule>> foreseen;
    for (int rule = Below(4); rule > 0; --rule) {
        foreseen.push_back(RuleOf({Item()}));
        engine.Foresee(*foreseen.back());
    }
    for (int round = 0; round < 40; ++round) {
        if (Below(10) == 0) {
            EventLogBuilder::Run(mPath, "update event_info set extra = '{\"a\":1}' where _ID % 7 = " +
                std::to_string(Below(7)));
        }
        const auto rule = !foreseen.empty() && Below(3) == 0
            ? OneOf(foreseen)
            : RuleOf(Below(3) == 0 ? std::vector{Item(), Item()} : std::vector{Item()});
        mLog.Clear();
        const bool answer = engine.IsFaultHappened(rule, "");
        const std::vector<std::string> lines = mLog.Lines();
        mLog.Clear();
        ASSERT_EQ(plain.IsFaultHappened(rule, ""), answer) << "round " << round;
        ASSERT_EQ(mLog.Lines(), lines) << "round " << round;
    }
}

TEST_P(AlarmProperty, AsOfAMomentAnswersAndLogLinesAreThoseOfALogThatEndsThere)
{
    WriteLog();
    std::vector<std::shared_ptr<AlarmRule>> rules;
    for (int rule = 0; rule < 20; ++rule) {
        rules.push_back(RuleOf({Item()}));
    }
    const auto answers = [this, &rules] {
        AlarmRuleEngine engine(mHelper);
        std::vector<std::pair<bool, std::vector<std::string>>> told;
        for (const auto& rule : rules) {
            mLog.Clear();
            const bool answer = engine.IsFaultHappened(rule, "");
            told.emplace_back(answer, mLog.Lines());
        }
        return told;
    };
    const std::string last = std::to_string(NOW - Below(30) * DAY - Below(static_cast<int>(DAY)));
    mSettings.Set(Settings::AS_OF, last);
    const auto asOf = answers();
    mSettings.Set(Settings::AS_OF, "");
    EventLogBuilder::Run(mPath, "delete from event_info_flow where occurrence_time > " + last);
    EXPECT_EQ(answers(), asOf);
}

TEST_P(AlarmProperty, PlainCountsAreThoseOfOneGroupedStatement)
{
    WriteLog();
    AlarmRuleEngine engine(mHelper);
    for (int round = 0; round < 20; ++round) {
        const int first = 1 + Below(12);
        const int last = first + Below(6);
        const int period = 1 + Below(70);
        const int threshold = 1 + Below(25);
        const auto rule = RuleOf({Ids(std::to_string(first), std::to_string(last)).Latest(period, threshold)});
        ASSERT_EQ(engine.IsFaultHappened(rule, ""), HasIdWithRows(first, last, NOW - period * DAY, threshold))
            << first << '-' << last << ' ' << period << ' ' << threshold;
    }
}

INSTANTIATE_TEST_SUITE_P(Seed, AlarmProperty, testing::Range(1U, 31U));

} // namespace
