#include "arborist/stores/event_log/requests.h"

#include <gmock/gmock.h>

#include "tests/stores/event_log/number_question.h"

namespace {

using testing::ElementsAre;
using Request = Requests::Request;

TEST(RequestsTest, QuestionsThatAnswerAlikeShareANumber)
{
    Requests requests;
    const auto first = requests.NumberOf(NumberQuestion::Of("a"));
    const auto second = requests.NumberOf(NumberQuestion::IsThere("a"));
    EXPECT_NE(first, second);
    EXPECT_EQ(requests.NumberOf(NumberQuestion::Of("a")), first);
    EXPECT_EQ(requests.GetQuestion(second).GetName(), "is there a");
}

TEST(RequestsTest, AreTurnedSoThatOneIsFirst)
{
    Requests requests;
    const auto question = requests.NumberOf(NumberQuestion::Of("a"));
    const Request first{1, 2, question};
    const Request second{3, 4, question};
    const Request third{1, 4, question};
    for (const Request& request : {first, second, first, third}) {
        requests.Add(request);
    }
    EXPECT_THAT(requests.AllFrom(first), ElementsAre(first, second, third));
    EXPECT_THAT(requests.AllFrom(third), ElementsAre(third, first, second));
}

} // namespace
