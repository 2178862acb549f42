#include "arborist/evaluation/detection_customize.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/stores/event_log/log_event.h"
#include "arborist/stores/event_log/row_question.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

struct WeightCase { const char* name; const char* extra; std::int32_t expected; };
void PrintTo(const WeightCase& weightCase, std::ostream* out) { *out << weightCase.name; }
class DmdWeight : public testing::TestWithParam<WeightCase> {};

TEST_P(DmdWeight, IsWhatTheCountSays)
{
    LogCapture log;
    EXPECT_EQ(DetectionCustomize::CheckDmdEventCount(LogEvent(920000000, "", GetParam().extra)), GetParam().expected);
    const std::string extra = GetParam().extra;
    if (!extra.empty()) {
        EXPECT_EQ(DetectionCustomize::WeightQuestion()->Answer(extra), GetParam().expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, DmdWeight, testing::Values(
    WeightCase{"EmptyExtra", "", 0}, WeightCase{"NoCount", "{}", 1}, WeightCase{"Number", "{\"COUNT\":7}", 7},
    WeightCase{"Text", "{\"COUNT\":\"5\"}", 5}, WeightCase{"EmptyText", "{\"COUNT\":\"\"}", 1},
    WeightCase{"Null", "{\"COUNT\":null}", 1}, WeightCase{"Negative", "{\"COUNT\":-3}", -3},
    WeightCase{"OtherCase", "{\"count\":7}", 1}, WeightCase{"NoNumber", "{\"COUNT\":\"many\"}", 0},
    WeightCase{"LowBitsOfALargeNumber", "{\"COUNT\":4294967298}", 2}, WeightCase{"Fraction", "{\"COUNT\":2.5}", 2},
    WeightCase{"True", "{\"COUNT\":true}", 0}, WeightCase{"Object", "{\"COUNT\":{}}", 1},
    WeightCase{"Array", "{\"COUNT\":[7]}", 1}, WeightCase{"NoObject", "[7]", 1}, WeightCase{"NoJson", "{COUNT", 1}),
    CaseName());

TEST(DetectionCustomizeTest, WeightsOfMembersAreToldInSilenceOrNotAtAll)
{
    LogCapture log;
    const auto question = DetectionCustomize::WeightQuestion();
    const RowQuestion& weight = *question;
    EXPECT_EQ(weight.GetKey(), "COUNT");
    EXPECT_EQ(weight.AnswerInSilence("7"), 7);
    EXPECT_EQ(weight.AnswerInSilence("4294967298"), 2);
    EXPECT_EQ(weight.AnswerInSilence(""), 1);
    EXPECT_EQ(weight.AnswerInSilence("6 or so"), 6);
    EXPECT_EQ(weight.AnswerInSilence("many"), std::nullopt);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST(DetectionCustomizeTest, ExtraThatIsNoJsonIsLogged)
{
    LogCapture log;
    DetectionCustomize::CheckDmdEventCount(LogEvent(920000000, "", "{COUNT"));
    EXPECT_THAT(log.Lines(FT::LEVEL_ERROR),
        ElementsAre(StartsWith("FUNc:DetectionCustomize::CheckDmdEventCount: parseJson err. * Line 1")));
}

struct IdCase { const char* name; std::int32_t id; bool isDmd; };
void PrintTo(const IdCase& idCase, std::ostream* out) { *out << idCase.name; }
class DmdId : public testing::TestWithParam<IdCase> {};

TEST_P(DmdId, IsInOneOfThreeRanges)
{
    EXPECT_EQ(DetectionCustomize::IsDmdEvent(GetParam().id), GetParam().isDmd);
}

INSTANTIATE_TEST_SUITE_P(Table, DmdId, testing::Values(
    IdCase{"BeforeFirst", 919999999, false}, IdCase{"First", 920000000, true}, IdCase{"Last", 929999999, true},
    IdCase{"AfterLast", 930000000, false}, IdCase{"BeforeSecond", 909029999, false},
    IdCase{"SecondFirst", 909030000, true}, IdCase{"SecondLast", 909031999, true},
    IdCase{"AfterSecond", 909032000, false}, IdCase{"BeforeThird", 912000999, false},
    IdCase{"ThirdFirst", 912001000, true}, IdCase{"ThirdLast", 912001999, true},
    IdCase{"AfterThird", 912002000, false}, IdCase{"Negative", -920000000, false}),
    CaseName());

} // namespace
