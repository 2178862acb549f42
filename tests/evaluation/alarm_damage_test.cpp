// A log in which each page is broken in turn, in each way: what rules answer and leave in the library's log is what one
// query for each id does.

#include <cstdlib>
#include <random>

#include <gtest/gtest.h>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "tests/evaluation/alarm_rules.h"
#include "tests/evaluation/plain_alarm.h"
#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t MINUTE = 60;
constexpr std::size_t PAGE = 1024;
constexpr int ROWS = 2000;
constexpr char FILE_NAME[] = "data/Comms/Lumbra/workDir/0/log.db";

enum class Way { ZEROS, RANDOM, NEXT_PAGE, CUT, CUT_WITHIN };

struct DamageCase {
    const char* name;
    Way way;
    const char* schemaChange;
    /// One page in so many, of those from the `first` on.
    std::size_t step = 1;
};
void PrintTo(const DamageCase& damageCase, std::ostream* out) { *out << damageCase.name; }

class AlarmDamage : public testing::TestWithParam<DamageCase> {
protected:
    AlarmDamage()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mSettings.Set(Settings::VERSION_NAME, "1");
        EventLogBuilder builder;
        builder.Schema("PRAGMA page_size = 1024; CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);");
        static const char* const versions[] = {"1", "1", "2", ""};
        for (int row = 0; row < ROWS; ++row) {
            // Ids in clusters, so that some stand on few pages.
            const std::int64_t id = row % 5 == 0 ? 920000000 + row % 3 : 1 + row / 100 % 7 + row % 2 * 3;
            builder.Row({NOW - (ROWS - row) * 20 * MINUTE, id, versions[row % 4], Extra(row)});
        }
        builder.Sql(GetParam().schemaChange).WriteTo(mPath);
        mWhole = mDir.Read(FILE_NAME);
    }

    static std::string Extra(int row)
    {
        const std::string number = std::to_string(row % 7);
        return row % 97 == 0 ? "no json" : row % 101 == 0
            ? "{\"a\":" + number + ",\"text\":\"" + std::string(3000, 'x') + "\"}"
            : row % 3 == 0 ? "{\"COUNT\":" + number + ",\"b\":\"x\"}" : "{\"a\":" + number + ",\"b\":\"y\"}";
    }

    // Plain, tested, weighted and daily.
    static std::vector<std::shared_ptr<AlarmRule>> Rules()
    {
        Ids tested("0", "9");
        tested.Duration(20, 60).DailyPeak(20, 25).WithParam("p", "a", "int").WithParam("q", "b", "string")
            .Single("p", "ge", "3").Multiple({{"p", "ge", "1"}, {"q", "eq", "y"}});
        return {RuleOf({Ids("3", "12").Latest(20, 150).Begin("2")}), RuleOf({Ids("1", "9").DailyPeak(25, 500)}),
            RuleOf({tested}), RuleOf({Ids("919999999", "920000003").Duration(30, 5000).DailyPeak(30, 5000)})};
    }

    std::string Broken(std::size_t page)
    {
        std::string file = mWhole;
        switch (GetParam().way) {
        case Way::ZEROS:
            file.replace(page * PAGE, PAGE, PAGE, '\0');
            break;
        case Way::RANDOM:
            for (std::size_t place = page * PAGE; place < (page + 1) * PAGE; ++place) {
                file[place] = static_cast<char>(mRandom());
            }
            break;
        case Way::NEXT_PAGE: // of a text that goes on elsewhere; any other page loses its kind by it
            file.replace(page * PAGE, 4, 4, '\x7F');
            break;
        case Way::CUT:
            file.resize(page * PAGE);
            break;
        case Way::CUT_WITHIN:
            file.resize(page * PAGE + PAGE / 3);
            break;
        }
        return file;
    }

    void ExpectThatOfEachId()
    {
        const auto helper = std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr);
        AlarmRuleEngine engine(helper);
        PlainAlarm plain(helper);
        const auto rules = Rules();
        for (const auto& rule : rules) {
            engine.Foresee(*rule);
        }
        for (std::size_t rule = 0; rule < rules.size(); ++rule) {
            mLog.Clear();
            const bool answer = engine.IsFaultHappened(rules[rule], "");
            const std::vector<std::string> lines = mLog.Lines();
            mLog.Clear();
            ASSERT_EQ(answer, plain.IsFaultHappened(rules[rule], "")) << "rule " << rule;
            ASSERT_EQ(lines, mLog.Lines()) << "rule " << rule;
        }
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path(FILE_NAME);
    std::string mWhole;
    std::mt19937 mRandom{4711};
};

TEST_P(AlarmDamage, AnswersAndLogLinesAreThoseOfAQueryForEachId)
{
    ExpectThatOfEachId();
    const std::size_t pages = mWhole.size() / PAGE;
    ASSERT_GT(pages, 100U);
    // All pages where that is asked for; otherwise some of each table, as a run takes a while.
    const std::size_t step = std::getenv("ARBORIST_ALL_PAGES") != nullptr ? 1 : GetParam().step;
    for (std::size_t page = 1; page < pages && !HasFatalFailure(); page += step) {
        SCOPED_TRACE(testing::Message() << "page " << page + 1 << " of " << pages);
        mDir.Write(FILE_NAME, Broken(page));
        ExpectThatOfEachId();
    }
}

constexpr char NO_INDEX[] = "select 1";
constexpr char INDEX[] = "create index i on event_info(event_id)";
constexpr char TIMES[] = "create index i on event_info_flow(occurrence_time)";

INSTANTIATE_TEST_SUITE_P(Table, AlarmDamage, testing::Values(
    DamageCase{"Zeros", Way::ZEROS, NO_INDEX, 2}, DamageCase{"RandomBytes", Way::RANDOM, NO_INDEX, 3},
    DamageCase{"BrokenChains", Way::NEXT_PAGE, NO_INDEX, 2}, DamageCase{"Cut", Way::CUT, NO_INDEX, 5},
    DamageCase{"CutWithinAPage", Way::CUT_WITHIN, NO_INDEX, 7},
    DamageCase{"ZerosWithIndex", Way::ZEROS, INDEX, 5}, DamageCase{"RandomBytesWithIndex", Way::RANDOM, INDEX, 11},
    DamageCase{"BrokenChainsWithIndex", Way::NEXT_PAGE, INDEX, 5}, DamageCase{"CutWithIndex", Way::CUT, INDEX, 9},
    DamageCase{"ZerosWithIndexOfTimes", Way::ZEROS, TIMES, 17},
    DamageCase{"BrokenChainsWithIndexOfTimes", Way::NEXT_PAGE, TIMES, 17}), CaseName());

} // namespace
