#include "diagnosis/process/library_log.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "diagnosis/text/path_names.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Sink : public diagnosis::LogSink {
public:
    explicit Sink(std::vector<std::string>& lines) : mLines(lines) {}
    bool IsWanted(unsigned int level) const override { return level >= FT::LEVEL_WARN; }
    void OnLine(unsigned int level, const std::string& line) override
    {
        mLines.push_back(std::to_string(level) + line);
    }

private:
    std::vector<std::string>& mLines;
};

/// Sends the log to a sink and restores it for the next test.
class LibraryLogTest : public testing::Test {
protected:
    LibraryLogTest() { diagnosis::SendLibraryLogTo(std::make_unique<Sink>(mLines)); }

    LogCapture mGivesTheLogBack;
    std::vector<std::string> mLines;
};

TEST_F(LibraryLogTest, TakesWantedLinesAsTheLibraryPrintsThem)
{
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: %d", "F", 1);
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: %d", "F", 2);
    FT::Log::GetInstance().Output(9, "FUNc:%s: %s", "F", "x");
    EXPECT_THAT(mLines, ElementsAre("3[[WARN] ]:FUNc:F: 2\n", "9[]:FUNc:F: x\n"));
}

TEST_F(LibraryLogTest, SeesPathsAsTheyAreShownForAWhile)
{
    diagnosis::PathNames names;
    names.Add("/tmp/x", "bundle");
    {
        diagnosis::PathsShown shown;
        shown.Show(names);
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: %s", "F", "/tmp/x/a");
    }
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: %s", "F", "/tmp/x/a");
    EXPECT_THAT(mLines, ElementsAre("3[[WARN] ]:FUNc:F: bundle/a\n", "3[[WARN] ]:FUNc:F: /tmp/x/a\n"));
}

TEST_F(LibraryLogTest, HearsNothingWhenTheLogIsGivenBack)
{
    diagnosis::GiveLibraryLogBack();
    testing::internal::CaptureStdout();
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: %d", "F", 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[[WARN] ]:FUNc:F: 2\n");
    EXPECT_THAT(mLines, IsEmpty());
}

} // namespace
