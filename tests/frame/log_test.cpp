#include "arborist/frame/log.h"

#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

struct LevelCase { const char* name; int level; const char* line; };
void PrintTo(const LevelCase& levelCase, std::ostream* out) { *out << levelCase.name; }
class DefaultLoggerLevel : public testing::TestWithParam<LevelCase> {};

TEST_P(DefaultLoggerLevel, PrintsDoubledBracketsTagAndText)
{
    testing::internal::CaptureStdout();
    FT::Log::GetInstance().Output(GetParam().level, "FUNc:%s: %d", "Here", 7);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(Table, DefaultLoggerLevel, testing::Values(
    LevelCase{"Trace", FT::LEVEL_TRACE, "[[TRACE] ]:FUNc:Here: 7\n"},
    LevelCase{"Debug", FT::LEVEL_DEBUG, "[[DEBUG] ]:FUNc:Here: 7\n"},
    LevelCase{"Info", FT::LEVEL_INFO, "[[INFO] ]:FUNc:Here: 7\n"},
    LevelCase{"Warn", FT::LEVEL_WARN, "[[WARN] ]:FUNc:Here: 7\n"},
    LevelCase{"Error", FT::LEVEL_ERROR, "[[ERROR] ]:FUNc:Here: 7\n"},
    LevelCase{"Fatal", FT::LEVEL_FATAL, "[[FATAL] ]:FUNc:Here: 7\n"},
    LevelCase{"UnknownLevelHasNoTag", 9, "[]:FUNc:Here: 7\n"},
    LevelCase{"NegativeLevelHasNoTag", -1, "[]:FUNc:Here: 7\n"}),
    CaseName());

TEST(DefaultLoggerTest, LongLinesAreWhole)
{
    for (const std::size_t length : {1000U, 1010U, 1011U, 1012U, 1013U, 1014U, 100000U}) {
        const std::string text(length, 'x');
        testing::internal::CaptureStdout();
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: %s.", "Here", text.c_str());
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "[[INFO] ]:FUNc:Here: " + text + ".\n") << length;
    }
}

TEST(DefaultLoggerTest, LinesOfSeveralThreadsStayWhole)
{
    testing::internal::CaptureStdout();
    const auto print = [] {
        for (int line = 0; line < 500; ++line) {
            FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: %d", "Here", 7);
        }
    };
    std::thread first(print);
    std::thread second(print);
    first.join();
    second.join();
    std::istringstream lines(testing::internal::GetCapturedStdout());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_EQ(line, "[[WARN] ]:FUNc:Here: 7") << count;
    }
    EXPECT_EQ(count, 1000);
}

class CountingLogger : public FT::ILogger {
public:
    CountingLogger(int* prints, bool* destroyed) : mPrints(prints), mDestroyed(destroyed) {}
    ~CountingLogger() override { *mDestroyed = true; }
    void Print(unsigned int, const std::string&, va_list) override { ++*mPrints; }

private:
    int* mPrints;
    bool* mDestroyed;
};

TEST(LogTest, NullLoggerIsRefusedAndTheOldOneStays)
{
    int prints = 0;
    bool destroyed = false;
    ASSERT_TRUE(FT::Log::GetInstance().SetUserLogger(std::make_unique<CountingLogger>(&prints, &destroyed)));
    EXPECT_FALSE(FT::Log::GetInstance().SetUserLogger(nullptr));
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: ", "Here");
    EXPECT_EQ(prints, 1);
    EXPECT_FALSE(destroyed);
    EXPECT_TRUE(FT::Log::GetInstance().SetUserLogger(std::make_unique<FT::DefaultLogger>()));
    EXPECT_TRUE(destroyed);
}

class LoggingLogger : public FT::ILogger {
public:
    explicit LoggingLogger(std::vector<std::string>& formats) : mFormats(formats) {}
    void Print(unsigned int, const std::string& format, va_list) override
    {
        if (mFormats.size() < 2) {
            mFormats.push_back("");
            FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: inner", "Here");
            mFormats.push_back(format);
        }
    }

private:
    std::vector<std::string>& mFormats;
};

TEST(LogTest, LoggerThatLogsItselfKeepsItsFormat)
{
    std::vector<std::string> formats;
    FT::Log::GetInstance().SetUserLogger(std::make_unique<LoggingLogger>(formats));
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: outer", "Here");
    FT::Log::GetInstance().SetUserLogger(std::make_unique<FT::DefaultLogger>());
    const std::vector<std::string> expected = {"", "", "FUNc:%s: inner", "FUNc:%s: outer"};
    EXPECT_EQ(formats, expected);
}

TEST(LogTest, NoFormatIsNoLine)
{
    testing::internal::CaptureStdout();
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(DefaultLoggerTest, WhatCanNotBeFormattedIsAnEmptyLine)
{
    testing::internal::CaptureStdout();
    // No letter outside of ASCII has a form in the locale of a program that sets none.
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "%ls", L"\x4e2d");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[[INFO] ]:\n");
}

} // namespace
