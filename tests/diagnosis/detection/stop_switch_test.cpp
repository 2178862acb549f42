#include "diagnosis/detection/stop_switch.h"

#include <gtest/gtest.h>

#include "diagnosis/detection/detection.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace diagnosis {
namespace {

class StopSwitchTest : public testing::Test {
protected:
    // A bundle with two code rules.
    StopSwitchTest()
    {
        mDir.Write("b/bundle.json", R"({"detectScene": 1, "treeTag": "Tag"})");
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("A"), Basic("B")})).Text());
        mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Tag").EventRule("A", {Single("a")}).EventRule("B", {Single("b")})
            .Rule(CodeRuleXml("a", "CODE_A", "a")).Rule(CodeRuleXml("b", "CODE_B", "b")).Text());
    }

    TempDir mDir;
};

TEST_F(StopSwitchTest, EndsTheDetectionThatRuns)
{
    StopSwitch stop;
    int asked = 0;
    DetectionOptions options;
    options.stop = &stop;
    options.codeRunner.ask = [&](const std::string&) {
        ++asked;
        stop.Stop();
        return std::optional(false);
    };
    const DetectionReport report = RunDetection({"b", mDir.Path("b")}, options);
    EXPECT_FALSE(report.failure);
    EXPECT_EQ(asked, 1) << "the second rule is not asked any more";
    EXPECT_TRUE(report.IsUndecided());
}

TEST_F(StopSwitchTest, ReachesNoDetectionThatStartsLater)
{
    StopSwitch stop;
    stop.Stop();
    int asked = 0;
    DetectionOptions options;
    options.stop = &stop;
    options.codeRunner.ask = [&asked](const std::string&) {
        ++asked;
        return std::optional(false);
    };
    EXPECT_FALSE(RunDetection({"b", mDir.Path("b")}, options).IsUndecided());
    EXPECT_EQ(asked, 2);
    stop.Stop(); // nothing runs any more
}

TEST_F(StopSwitchTest, IsRememberedByACallOnItsWayToTheDetection)
{
    StopSwitch stop;
    int asked = 0;
    DetectionOptions options;
    options.stop = &stop;
    options.codeRunner.ask = [&asked](const std::string&) {
        ++asked;
        return std::optional(false);
    };
    {
        const StopSwitch::Call call(&stop);
        stop.Stop();
        EXPECT_TRUE(stop.IsAsked());
        const DetectionReport report = RunDetection({"b", mDir.Path("b")}, options);
        EXPECT_FALSE(report.failure);
        EXPECT_TRUE(report.IsUndecided());
    }
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(stop.IsAsked());
    EXPECT_FALSE(RunDetection({"b", mDir.Path("b")}, options).IsUndecided()) << "that was another call";
}

// The code of the failure that an exception becomes.
template <typename Exception>
std::string CodeOf(const Exception& exception)
{
    try {
        throw exception;
    } catch (...) {
        const auto failure = FailureInFlight();
        return CodeWord(failure->code) + (": " + failure->message);
    }
}

TEST(FailureInFlightTest, TellsWhatWentWrong)
{
    EXPECT_EQ(CodeOf(std::bad_alloc()), "out_of_memory: memory ran out");
    EXPECT_EQ(CodeOf(std::runtime_error("odd")), "internal: internal error: odd");
    EXPECT_EQ(CodeOf(5), "internal: internal error");
}

TEST_F(StopSwitchTest, AnExceptionOfTheHostIsAFailureOfItsDetection)
{
    DetectionOptions options;
    options.codeRunner.ask = [](const std::string&) -> std::optional<bool> { throw std::bad_alloc(); };
    const DetectionReport report = RunDetection({"b", mDir.Path("b")}, options);
    ASSERT_TRUE(report.failure);
    EXPECT_EQ(report.failure->code, FailureCode::OUT_OF_MEMORY);
    EXPECT_TRUE(report.trees.empty());
}

TEST_F(StopSwitchTest, WithoutARuleSetThereIsNoDetection)
{
    EXPECT_TRUE(RunDetections({"b", mDir.Path("b")}, {}, {}).empty());
}

} // namespace
} // namespace diagnosis
