// Engines are independent: each belongs to one thread, and several threads may have one each.
#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/loaded_rule_set.h"
#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr int ROUNDS = 5;

// Formats each line, as a logger would, without keeping anything, as loggers are responsible for their own thread
// safety.
class FormattingLogger : public FT::ILogger {
public:
    explicit FormattingLogger(std::shared_ptr<std::atomic<int>> lines) : mLines(std::move(lines)) {}
    void Print(unsigned int, const std::string& format, va_list args) override
    {
        char line[512];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        if (std::vsnprintf(line, sizeof(line), format.c_str(), args) > 0) {
            ++*mLines;
        }
#pragma GCC diagnostic pop
    }

private:
    std::shared_ptr<std::atomic<int>> mLines;
};

// Orders no threads, so that the thread sanitizer sees what the library alone orders.
class SilentLogger : public FT::ILogger {
public:
    void Print(unsigned int, const std::string&, va_list) override {}
};

class TwoEngines : public testing::Test {
protected:
    using Causes = std::vector<std::string>;

    TwoEngines()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mSettings.Set(Settings::VERSION_NAME, "1.0");
        FT::Log::GetInstance().SetUserLogger(std::make_unique<FormattingLogger>(mLines));
        EventLogBuilder log;
        for (int row = 0; row < 200; ++row) {
            log.Row({NOW - row * 3600, 700 + row % 3, row % 2 == 0 ? "1.0" : "2.0",
                row % 5 == 0 ? "broken" : "{\"ms\":" + std::to_string(row) + "}"});
        }
        log.WriteTo(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"));
        mDir.Write("temp", "95.5\n");
    }
    ~TwoEngines() override { FT::Log::GetInstance().SetUserLogger(std::make_unique<FT::DefaultLogger>()); }

    // A rule set under `tag`, in a folder of this name, whose event `tag` + "-calm" doesn't fire.
    void WriteRules(const std::string& tag) const
    {
        mDir.Write(tag + "/FaultTrees.xml", TreeXml(tag).Tree(tag, Or({Basic(tag + "-alarm"), Basic(tag + "-peak"),
            Basic(tag + "-node"), Basic(tag + "-code"), Basic(tag + "-calm")})).Text());
        const Xml test = ConditionXml({SingleLogicXml(TestXml("gt", "m", "50"))});
        const Xml params = ParamsXml({ParamXml("m", "ms", "int")});
        mDir.Write(tag + "/FaultTreeRules.xml", RuleXml(tag)
            .Rule(AlarmRuleXml("alarm", {AlarmIdXml("700", "702", {TimeXml("duration", "30", "10"), params, test})
                .Attr("type", "param_eventid")}))
            .Rule(AlarmRuleXml("peak", {AlarmIdXml("700", "700", {TimeXml("daily_peak", "30", "3")})}))
            .Rule(NodeRuleXml("node", {NodeInfoXml("t", mDir.Path("temp")), ParamsXml({ParamXml("t", "t", "double")}),
                LogicExpressionXml("t * 2 - 1", "t", "x"), ConditionXml({SingleLogicXml(TestXml("gt", "t", "100"))})}))
            .Rule(CodeRuleXml("code", "C", "{}"))
            .Rule(AlarmRuleXml("calm", {AlarmIdXml("900", "999", {TimeXml("latest", "7", "1")})}))
            .EventRule(tag + "-alarm", {Single("alarm")})
            .EventRule(tag + "-peak", {Single("peak")})
            .EventRule(tag + "-node", {Single("node")})
            .EventRule(tag + "-code", {Single("code")})
            .EventRule(tag + "-calm", {Single("calm")})
            .FaultDescription(tag + "-code", {"described"})
            .Repair(tag + "-alarm", {{"never", ""}}) // so that detections read the records
            .Text());
    }

    std::shared_ptr<DetectInfo> InfoOf(const std::string& tag) const
    {
        auto info = DetectInfoFor(mDir, tag);
        info->mRuleFileDir = mDir.Path(tag);
        const auto runner = std::make_shared<CodeRunnerStub>();
        runner->answer = true;
        info->mCodeRuleRunner = runner;
        return info;
    }

    static Causes CausesOf(Arborist& arborist)
    {
        Causes causes;
        for (const auto& result : arborist.StartDetection()) {
            for (const auto& cause : result->mRootCauseResults) {
                causes.push_back(cause->mNode->mId);
            }
        }
        return causes;
    }

    // The root causes of each round, and the answer of one query.
    Causes Run(const std::string& tag) const
    {
        const auto info = InfoOf(tag);
        Causes answers;
        for (int round = 0; round < ROUNDS; ++round) {
            Arborist arborist(info);
            answers.push_back(arborist.GetCodeRuleFaultDescId("C"));
            const Causes causes = CausesOf(arborist);
            answers.insert(answers.end(), causes.begin(), causes.end());
        }
        return answers;
    }

    // The root causes of each round, every engine made with this set.
    std::vector<Causes> RunWith(const std::shared_ptr<LoadedRuleSet>& ruleSet, std::mutex* turns) const
    {
        const auto info = InfoOf("one");
        std::vector<Causes> answers;
        for (int round = 0; round < ROUNDS; ++round) {
            Arborist arborist(info, ruleSet);
            const auto turn = turns == nullptr ? std::unique_lock<std::mutex>() : std::unique_lock(*turns);
            answers.push_back(CausesOf(arborist));
        }
        return answers;
    }

    // The answer of a query of the repair records.
    std::vector<std::string> Repairs(const std::string& sql) const
    {
        return DatabaseRows(mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"), sql);
    }

    TempDir mDir;
    SettingsGuard mSettings;
    std::shared_ptr<std::atomic<int>> mLines = std::make_shared<std::atomic<int>>(0);
};

TEST_F(TwoEngines, OfTwoThreadsAnswerAsEachAlone)
{
    WriteRules("one");
    WriteRules("two");
    const Causes oneAlone = Run("one");
    const Causes twoAlone = Run("two");
    ASSERT_THAT(Causes(oneAlone.begin(), oneAlone.begin() + 5),
        testing::ElementsAre("described", "one-alarm", "one-peak", "one-node", "one-code"));
    const int linesAlone = *mLines;
    Causes one;
    Causes two;
    std::thread first([&] { one = Run("one"); });
    std::thread second([&] { two = Run("two"); });
    std::thread repairs([&] {
        for (int round = 0; round < ROUNDS; ++round) {
            UpdateRepairDb("R" + std::to_string(round)); // which no rule asks for
        }
    });
    first.join();
    second.join();
    repairs.join();
    EXPECT_EQ(one, oneAlone);
    EXPECT_EQ(two, twoAlone);
    EXPECT_GE(*mLines, 2 * linesAlone); // recording repairs logs lines of its own
    EXPECT_THAT(Repairs("select repair_id from repair_data"), testing::ElementsAre("R0", "R1", "R2", "R3", "R4"));
}

TEST_F(TwoEngines, ARecordIsNotLostBesideOtherRecordersAndADetection)
{
    constexpr int RECORDERS = 3;
    constexpr int RECORDS = 40;
    WriteRules("one");
    const Causes alone = Run("one");
    std::atomic<int> recording = RECORDERS;
    std::vector<std::thread> recorders;
    for (int recorder = 0; recorder < RECORDERS; ++recorder) {
        recorders.emplace_back([&recording, recorder] {
            for (int record = 0; record < RECORDS; ++record) {
                UpdateRepairDb(std::to_string(recorder) + "-" + std::to_string(record));
            }
            --recording;
        });
    }
    do {
        EXPECT_EQ(Run("one"), alone);
    } while (recording > 0);
    for (std::thread& recorder : recorders) {
        recorder.join();
    }
    EXPECT_THAT(Repairs("select count(*), count(distinct repair_id) from repair_data"),
        testing::ElementsAre(std::to_string(RECORDERS * RECORDS) + "|" + std::to_string(RECORDERS * RECORDS)));
}

TEST_F(TwoEngines, OfTwoThreadsTakeTurnsWithOneLoadedRuleSet)
{
    WriteRules("one");
    const auto ruleSet = std::make_shared<LoadedRuleSet>(*InfoOf("one"));
    const std::vector<Causes> all(ROUNDS, {"one-alarm", "one-peak", "one-node", "one-code"});
    std::mutex turns;
    std::vector<Causes> first;
    std::thread other([&] { first = RunWith(ruleSet, &turns); });
    const std::vector<Causes> second = RunWith(ruleSet, &turns);
    other.join();
    EXPECT_EQ(first, all);
    EXPECT_EQ(second, all);
}

TEST_F(TwoEngines, OfTwoThreadsThatMeetAtOneLoadedRuleSetAnswerWholeOrAreRefused)
{
    WriteRules("one");
    const auto ruleSet = std::make_shared<LoadedRuleSet>(*InfoOf("one"));
    const auto isWholeOrRefused =
        testing::AnyOf(testing::ElementsAre("one-alarm", "one-peak", "one-node", "one-code"), testing::IsEmpty());
    std::vector<Causes> first;
    std::thread other([&] { first = RunWith(ruleSet, nullptr); });
    const std::vector<Causes> second = RunWith(ruleSet, nullptr);
    other.join();
    EXPECT_THAT(first, testing::Each(isWholeOrRefused));
    EXPECT_THAT(second, testing::Each(isWholeOrRefused));
}

TEST_F(TwoEngines, OfOneLoadedRuleSetAnswerQueriesDuringADetection)
{
    WriteRules("one");
    FT::Log::GetInstance().SetUserLogger(std::make_unique<SilentLogger>());
    for (int set = 0; set < 20; ++set) { // what the first use of a set alone would do is seldom done by two at once
        const auto ruleSet = std::make_shared<LoadedRuleSet>(*InfoOf("one"));
        std::atomic<int> ready = 0;
        const auto meet = [&ready] { // without an order for the sanitizer to go by
            ready.fetch_add(1, std::memory_order_relaxed);
            while (ready.load(std::memory_order_relaxed) < 3) {
                std::this_thread::yield();
            }
        };
        const auto ask = [&] {
            Arborist arborist(InfoOf("one"), ruleSet);
            meet();
            EXPECT_EQ(arborist.GetCodeRuleFaultDescId("C"), "described");
            EXPECT_TRUE(arborist.IsRunRule("C"));
        };
        std::thread first(ask);
        std::thread second(ask);
        Arborist arborist(InfoOf("one"), ruleSet);
        meet();
        EXPECT_EQ(CausesOf(arborist), Causes({"one-alarm", "one-peak", "one-node", "one-code"}));
        first.join();
        second.join();
    }
}

} // namespace
