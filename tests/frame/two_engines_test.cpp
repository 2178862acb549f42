// Engines are independent: each belongs to one thread, and several threads may have one each.
#include <atomic>
#include <cstdio>
#include <thread>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/support/code_runner_stub.h"
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

class TwoEngines : public testing::Test {
protected:
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
            .Text());
    }

    // The root causes of each round, and the answer of one query.
    std::vector<std::string> Run(const std::string& tag) const
    {
        const auto info = DetectInfoFor(mDir, tag);
        info->mRuleFileDir = mDir.Path(tag);
        const auto runner = std::make_shared<CodeRunnerStub>();
        runner->answer = true;
        info->mCodeRuleRunner = runner;
        std::vector<std::string> answers;
        for (int round = 0; round < ROUNDS; ++round) {
            Arborist arborist(info);
            answers.push_back(arborist.GetCodeRuleFaultDescId("C"));
            for (const auto& result : arborist.StartDetection()) {
                for (const auto& cause : result->mRootCauseResults) {
                    answers.push_back(cause->mNode->mId);
                }
            }
        }
        return answers;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    std::shared_ptr<std::atomic<int>> mLines = std::make_shared<std::atomic<int>>(0);
};

TEST_F(TwoEngines, OfTwoThreadsAnswerAsEachAlone)
{
    WriteRules("one");
    WriteRules("two");
    const std::vector<std::string> oneAlone = Run("one");
    const std::vector<std::string> twoAlone = Run("two");
    ASSERT_THAT(std::vector<std::string>(oneAlone.begin(), oneAlone.begin() + 5),
        testing::ElementsAre("described", "one-alarm", "one-peak", "one-node", "one-code"));
    const int linesAlone = *mLines;
    std::vector<std::string> one;
    std::vector<std::string> two;
    std::thread first([&] { one = Run("one"); });
    std::thread second([&] { two = Run("two"); });
    std::thread repairs([&] {
        for (int round = 0; round < ROUNDS; ++round) {
            UpdateRepairDb("R"); // which no rule asks for
        }
    });
    first.join();
    second.join();
    repairs.join();
    EXPECT_EQ(one, oneAlone);
    EXPECT_EQ(two, twoAlone);
    EXPECT_GE(*mLines, 2 * linesAlone); // recording repairs logs lines of its own
}

} // namespace
