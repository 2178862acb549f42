#include "diagnosis/detection/code_answers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using diagnosis::CodeAnswers;
using diagnosis::CodeRunner;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Outcome = CodeRuleRunner::Outcome;

std::vector<std::string> Messages(const CodeAnswers& answers)
{
    std::vector<std::string> messages;
    for (const diagnosis::Warning& warning : answers.GetWarnings()) {
        messages.push_back(warning.message);
    }
    return messages;
}

CodeRunner Host(std::function<std::optional<bool>(const std::string&)> ask)
{
    CodeRunner runner;
    runner.ask = std::move(ask);
    return runner;
}

TEST(CodeAnswersTest, TheHostIsAskedWhatAProgramIsAsked)
{
    std::string asked;
    CodeAnswers answers({}, Host([&asked](const std::string& question) {
        asked = question;
        return std::optional(true);
    }));
    EXPECT_TRUE(answers.RunCodeRule({"D"}, {"S"}, {"R"}, "info"));
    EXPECT_EQ(asked, R"({"faultDescriptionIds": ["D"], "suggestionIds": ["S"], "repairIds": ["R"], "userDefinedInfo": "info"})" "\n");
    EXPECT_EQ(answers.GetOutcome(), Outcome::ANSWERED);
    EXPECT_THAT(answers.GetAnswers(), ElementsAre(Pair("info", true)));
    EXPECT_THAT(Messages(answers), IsEmpty());
}

TEST(CodeAnswersTest, AHostWithoutAnAnswerIsWarnedOf)
{
    CodeAnswers answers({}, Host([](const std::string&) { return std::optional<bool>(); }));
    EXPECT_FALSE(answers.RunCodeRule({}, {}, {}, "info"));
    EXPECT_EQ(answers.GetOutcome(), Outcome::BROKEN_OFF);
    EXPECT_THAT(Messages(answers), ElementsAre("the host: asked about \"info\": gave no answer: taken as not present"));
    EXPECT_THAT(answers.GetAnswers(), IsEmpty());
}

TEST(CodeAnswersTest, OfTwoAnswersTheFirstIsKeptAndTheDifferenceTold)
{
    bool next = false;
    CodeAnswers answers({}, Host([&next](const std::string&) { return std::optional(next = !next); }));
    EXPECT_TRUE(answers.RunCodeRule({}, {}, {}, "info"));
    EXPECT_FALSE(answers.RunCodeRule({}, {}, {}, "info"));
    EXPECT_THAT(Messages(answers), ElementsAre("the host: two answers about \"info\" differ"));
    EXPECT_THAT(answers.GetAnswers(), ElementsAre(Pair("info", true)));
}

TEST(CodeAnswersTest, ARecordedAnswerIsNotAskedForAgain)
{
    CodeAnswers answers({{"info", true}}, Host([](const std::string&) { return std::optional(false); }));
    EXPECT_TRUE(answers.RunCodeRule({}, {}, {}, "info"));
    EXPECT_FALSE(answers.RunCodeRule({}, {}, {}, "other"));
}

TEST(CodeAnswersTest, WithoutAnybodyToAskNobodyIsThere)
{
    CodeAnswers answers({{"info", true}}, {});
    EXPECT_FALSE(answers.RunCodeRule({}, {}, {}, "other"));
    EXPECT_EQ(answers.GetOutcome(), Outcome::NOBODY_THERE);
    EXPECT_THAT(Messages(answers), IsEmpty());
}

TEST(CodeAnswersTest, ADetectionHasNoRunnerWhereNobodyCanAnswer)
{
    DetectInfo detection;
    EXPECT_EQ(diagnosis::AnswerCodeRules({}, {}, detection), nullptr);
    EXPECT_EQ(detection.mCodeRuleRunner, nullptr);
    diagnosis::Bundle bundle;
    bundle.codeAnswers["info"] = true;
    EXPECT_NE(diagnosis::AnswerCodeRules(bundle, {}, detection), nullptr);
    EXPECT_NE(detection.mCodeRuleRunner, nullptr);
}

} // namespace
