// Alarm rules are answered from one reading of the log. Here random rules over random logs are answered a second way,
// as slowly and plainly as they can be: a query for each id, a parse for each row and test.

#include <array>
#include <random>

#include <gmock/gmock.h>
#include <json/value.h>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/detection_customize.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/event_log/alarm_rule_db_helper.h"
#include "arborist/stores/sql/simple_database_helper.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/string_util.h"
#include "tests/evaluation/alarm_rules.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;

class PlainAlarm : public RuleChecker {
public:
    explicit PlainAlarm(std::shared_ptr<RuleHelper> helper) : mHelper(std::move(helper)) {}

    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override
    {
        for (const auto& item : std::dynamic_pointer_cast<AlarmRule>(rule)->alarmItemList) {
            const std::int32_t last = item->GetEventIdMax();
            const std::int32_t lower = item->GetEventIdMin();
            const std::int32_t first = lower == 0 ? last : lower;
            if (first == 0 || first > last) {
                return false;
            }
            for (const auto type : {TimeSet::DURATION, TimeSet::DAILY_PEAK, TimeSet::LATEST}) {
                if (Window(*item, RuleHelper::GetTimeSetByRuleType(item, type), type, first, last, eventId)) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    using Events = AlarmRuleDbHelper::EventList;
    struct Ask { std::int32_t threshold; std::int64_t start; bool fromUpdate; };

    bool Window(const AlarmRule::AlarmItem& item, const std::shared_ptr<TimeSet>& set, TimeSet::TimeType type,
        std::int32_t first, std::int32_t last, const std::string& eventId)
    {
        if (set == nullptr || (set->period == 0 && set->threshold == 0)) {
            return false;
        }
        const Ask ask{set->threshold, mHelper->GetDetectStartTime(set->period, item.BeginFlag, eventId),
            RuleHelper::IsDetectFromUpdate(item.BeginFlag)};
        if (item.type != "param_eventid") {
            return Any(ask, type, first, last, nullptr);
        }
        for (const auto& orLogic : item.conditionList) {
            if (orLogic->GetType() == "single_logic") {
                const TestPara test = ParaOf(*orLogic, item.params);
                if (Any(ask, type, first, last, &test)) {
                    return true;
                }
            } else if (Multiple(*orLogic, item, ask, type, first, last)) {
                return true;
            }
        }
        return false;
    }

    bool Any(const Ask& ask, TimeSet::TimeType type, std::int32_t first, std::int32_t last, const TestPara* test)
    {
        for (std::int32_t id = first; id <= last; ++id) {
            if (type == TimeSet::DAILY_PEAK ? Daily(ask, id, test) : Period(ask, id, test)) {
                return true;
            }
        }
        return false;
    }

    bool Multiple(const OrLogic& orLogic, const AlarmRule::AlarmItem& item, const Ask& ask, TimeSet::TimeType type,
        std::int32_t first, std::int32_t last)
    {
        for (std::int32_t id = first; type == TimeSet::DURATION && id <= last; ++id) {
            std::int32_t count = 0;
            const Events events = Rows(ask, id);
            for (const auto& event : events) {
                bool passes = true;
                for (const auto& logic : orLogic.GetLogicItemList()) {
                    passes = passes && Passes(*event, ParaOf(*logic, item.params));
                }
                count += passes ? 1 : 0;
            }
            if (!events.empty() && !orLogic.GetLogicItemList().empty() && count >= ask.threshold) {
                return true;
            }
        }
        bool all = type != TimeSet::DURATION;
        for (const auto& logic : orLogic.GetLogicItemList()) {
            const TestPara test = ParaOf(*logic, item.params);
            bool result = false;
            for (std::int32_t id = first; type != TimeSet::DURATION && id <= last; ++id) {
                result = Period(ask, id, &test);
            }
            all = all && result;
        }
        return all;
    }

    Events Rows(const Ask& ask, std::int32_t id) { return mStore.GetEventList(id, ask.start, ask.fromUpdate); }

    bool Period(const Ask& ask, std::int32_t id, const TestPara* test)
    {
        const Events events = Rows(ask, id);
        std::uint64_t count = 0;
        for (const auto& event : events) {
            if (test != nullptr) {
                count += Passes(*event, *test) ? 1 : 0;
            } else {
                count += DetectionCustomize::IsDmdEvent(id)
                    ? static_cast<std::uint64_t>(std::int64_t{DetectionCustomize::CheckDmdEventCount(*event)})
                    : 1;
            }
        }
        return !events.empty() && count >= static_cast<std::uint64_t>(std::int64_t{ask.threshold});
    }

    bool Daily(const Ask& ask, std::int32_t id, const TestPara* test)
    {
        const Events events = Rows(ask, id);
        std::array<std::int64_t, 32> days{};
        for (const auto& event : events) {
            const auto day = static_cast<std::size_t>(std::stoi(event->occurrenceTime.substr(8, 2)));
            if (test != nullptr) {
                days[day] += Passes(*event, *test) ? 1 : 0;
            } else {
                days[day] += DetectionCustomize::IsDmdEvent(id) ? DetectionCustomize::CheckDmdEventCount(*event) : 1;
            }
        }
        std::int32_t peak = 0;
        for (const std::int64_t count : days) {
            peak = std::max(peak, static_cast<std::int32_t>(count));
        }
        return !events.empty() && peak >= ask.threshold;
    }

    template <typename Logic>
    static TestPara ParaOf(const Logic& logic, const ParamMap& params)
    {
        const auto param = params.find(logic.GetParamId());
        return {param == params.end() ? "" : param->second->key, logic.GetValue(),
            param == params.end() ? "" : param->second->type, logic.GetLogic()};
    }

    bool Passes(const LogEvent& event, const TestPara& test)
    {
        if (event.extra.empty()) {
            return false;
        }
        Json::Value root;
        std::string error;
        if (!ParseJson(event.extra, root, error)) {
            FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parse eventParamJson err. %s ",
                "AlarmRuleEngine::IsErrorForEventWithParam", error.c_str());
        }
        const std::string member = MemberText(root, test.key);
        return !member.empty() && IsFaultForParam(test.logic, test.type, test.value, member);
    }

    AlarmRuleDbHelper mStore;
    std::shared_ptr<RuleHelper> mHelper;
};

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
        // Few values and many, small and large: what is kept of them grows meanwhile.
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
    // What is foreseen may be asked or not, and what is asked may be foreseen or not.
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
