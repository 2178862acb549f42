#include "arborist/frame/log_recording.h"

#include <thread>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void Log(const char* text)
{
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: took %s", "A::B", text);
}

TEST(LogRecording, TakesLinesInPlaceOfTheLogger)
{
    const LogCapture log;
    FT::LogLines lines;
    {
        const FT::LogRecording recording(&lines);
        Log("one");
        EXPECT_EQ(FT::LogRecording::OfThread(), &lines);
    }
    Log("two");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, FT::LEVEL_WARN);
    EXPECT_EQ(lines[0].text, "FUNc:A::B: took one");
    EXPECT_THAT(log.Lines(), ElementsAre("FUNc:A::B: took two"));
}

TEST(LogRecording, InnermostAloneTakesThem)
{
    const LogCapture log;
    FT::LogLines outer;
    const FT::LogRecording recording(&outer);
    {
        FT::LogLines inner;
        const FT::LogRecording nested(&inner);
        Log("inner");
    }
    {
        const FT::LogRecording none(nullptr);
        Log("logger");
    }
    Log("outer");
    ASSERT_EQ(outer.size(), 1U);
    EXPECT_EQ(outer[0].text, "FUNc:A::B: took outer");
    EXPECT_THAT(log.Lines(), ElementsAre("FUNc:A::B: took logger"));
}

TEST(LogRecording, OtherThreadsLogOn)
{
    const LogCapture log;
    FT::LogLines lines;
    const FT::LogRecording recording(&lines);
    std::thread([] { Log("other"); }).join();
    EXPECT_THAT(lines, IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre("FUNc:A::B: took other"));
}

TEST(LogRecording, LineIsLoggedAgainWithItsLevelAndPercentSigns)
{
    const LogCapture log;
    FT::LogAgain({FT::LEVEL_ERROR, "FUNc:A::B: 100%s of /a: 5%"});
    EXPECT_THAT(log.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:A::B: 100%s of /a: 5%"));
    EXPECT_THAT(log.Formats(), ElementsAre("FUNc:%s: 100%%s of /a: 5%%"));
}

TEST(LogRecording, LineOfAnotherFormIsLoggedAsItIs)
{
    const LogCapture log;
    FT::LogAgain({FT::LEVEL_INFO, "host: %d"});
    FT::LogAgain({FT::LEVEL_INFO, "FUNc:host"});
    EXPECT_THAT(log.Lines(FT::LEVEL_INFO), ElementsAre("host: %d", "FUNc:host"));
}

} // namespace
