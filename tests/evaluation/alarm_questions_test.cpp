#include "arborist/evaluation/alarm_questions.h"

#include <limits>
#include <string>

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_checker.h"
#include "tests/evaluation/alarm_rules.h"

namespace {

using testing::ElementsAre;

class NoChecker : public RuleChecker {
public:
    bool IsFaultHappened(const std::shared_ptr<Rule>&, const std::string&) override { return false; }
};

std::vector<std::string> Parts(std::int32_t first, std::int32_t last)
{
    std::vector<std::string> parts;
    for (const auto& part : AlarmQuestions::PartsOf({first, last})) {
        parts.push_back(std::to_string(part.first) + "-" + std::to_string(part.last));
    }
    return parts;
}

TEST(AlarmQuestionsTest, RangesAreSplitWhereWeightsBeginAndEnd)
{
    EXPECT_THAT(Parts(7, 9), ElementsAre("7-9"));
    EXPECT_THAT(Parts(920000005, 920000006), ElementsAre("920000005-920000006"));
    EXPECT_THAT(Parts(919999999, 930000000),
        ElementsAre("919999999-919999999", "920000000-929999999", "930000000-930000000"));
    EXPECT_THAT(Parts(1, std::numeric_limits<std::int32_t>::max()),
        ElementsAre("1-909029999", "909030000-909031999", "909032000-912000999", "912001000-912001999",
            "912002000-919999999", "920000000-929999999", "930000000-2147483647"));
}

TEST(AlarmQuestionsTest, OnlyWeighedRowsAreAskedForTheirWeight)
{
    const NoChecker checker;
    const AlarmQuestions questions(checker);
    EXPECT_THAT(questions.WeightOf({7, 9}), testing::IsEmpty());
    ASSERT_EQ(questions.WeightOf({920000000, 929999999}).size(), 1U);
    EXPECT_EQ(questions.WeightOf({920000000, 929999999}).front()->GetKey(), "COUNT");
}

TEST(AlarmQuestionsTest, EachConditionAsksItsTests)
{
    const NoChecker checker;
    const Ids ids = Ids("7", "7").WithParam("p", "a", "int").Single("p", "eq", "1")
        .Multiple({{"p", "gt", "2"}, {"none", "lt", "3"}});
    const auto tests = AlarmQuestions(checker).TestsOf(*ids.Item());
    ASSERT_EQ(tests.size(), 3U);
    EXPECT_EQ(tests[1]->GetKey(), "a");
    EXPECT_EQ(tests[2]->GetKey(), "") << "no parameter has this id";
}

TEST(AlarmQuestionsTest, WhatIsMissingAsksNothing)
{
    const NoChecker checker;
    const AlarmQuestions questions(checker);
    const Ids ids = Ids("7", "7").WithParam("p", "a", "int").Condition(nullptr).Single("p", "eq", "1");
    EXPECT_EQ(questions.TestsOf(*ids.Item()).size(), 1U);
    ids.Item()->params["p"] = nullptr;
    ASSERT_EQ(questions.TestsOf(*ids.Item()).size(), 1U);
    EXPECT_EQ(questions.TestsOf(*ids.Item()).front()->GetKey(), "") << "the parameter is null";
    ids.Item()->params.clear();
    EXPECT_THAT(questions.TestsOf(*ids.Item()), testing::IsEmpty()) << "an item without parameters has no tests";
    const Ids nullTest = Ids("7", "7").WithParam("p", "a", "int").Multiple({});
    nullTest.Item()->conditionList.front()->SetLogicItemList({nullptr});
    EXPECT_THAT(questions.TestsOf(*nullTest.Item()), testing::IsEmpty());
}

} // namespace
