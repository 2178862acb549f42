#include "arborist/stores/common_part/file_name_pattern.h"

#include <regex>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

bool Matches(const std::string& pattern, const std::string& name)
{
    return FileNamePattern(pattern).Matches(name);
}

struct PatternCase { const char* name; const char* pattern; const char* fileName; bool matches; };
void PrintTo(const PatternCase& patternCase, std::ostream* out) { *out << patternCase.name; }
class FileNamePatternMatch : public testing::TestWithParam<PatternCase> {};

TEST_P(FileNamePatternMatch, IsOfTheWholeName)
{
    EXPECT_EQ(Matches(GetParam().pattern, GetParam().fileName), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(Table, FileNamePatternMatch, testing::Values(
    PatternCase{"WholeName", ".*\\.db", "/data/a.db", true},
    PatternCase{"PartOfTheNameIsNotEnough", "a\\.db", "/data/a.db", false},
    PatternCase{"TailIsNotEnough", ".*\\.db", "a.db-journal", false},
    PatternCase{"CaseCounts", ".*\\.db", "A.DB", false},
    PatternCase{"EmptyPattern", "", "a", false},
    PatternCase{"EmptyName", ".*", "", false},
    PatternCase{"Alternatives", "(game|app)_[0-9]{2}\\.db", "app_07.db", true},
    PatternCase{"WordBoundary", ".*\\bgame\\b.*", "/x/game.db", true},
    PatternCase{"LookAhead", "(?!.*tmp).*\\.db", "/x/tmp.db", false},
    PatternCase{"BackReference", "(.*)_\\1\\.db", "ab_ab.db", true},
    PatternCase{"BackReferenceToSomethingElse", "(.*)_\\1\\.db", "ab_ac.db", false}),
    CaseName());

TEST(FileNamePatternTest, PatternThatIsNoneRaisesTheLibrarysErrorAtTheFirstName)
{
    FileNamePattern pattern("(");
    EXPECT_FALSE(pattern.Matches(""));
    EXPECT_THROW(pattern.Matches("a"), std::regex_error);
}

TEST(FileNamePatternTest, PatternBeyondMeasureRaisesTheSameError)
{
    EXPECT_THROW(Matches(std::string(4097, 'a'), "a"), std::regex_error);
    EXPECT_FALSE(Matches(std::string(4096, 'a'), "a"));
    EXPECT_FALSE(Matches(std::string(2048, '(') + std::string(2048, ')'), "a"));
}

TEST(FileNamePatternTest, LongNamesAndRepeatsOfRepeatsComeToAnEnd)
{
    EXPECT_FALSE(Matches("(a+)+b", std::string(4095, 'a')));
    EXPECT_TRUE(Matches("(a+)+b", std::string(4094, 'a') + "b"));
    EXPECT_TRUE(Matches(".*", std::string(4095, 'a')));
    EXPECT_FALSE(Matches(".*", std::string(4096, 'a')));
}

TEST(FileNamePatternTest, BackReferencesThatWouldNeverEndRaiseTheErrorInstead)
{
    EXPECT_THROW(Matches("(a+)+\\1b", std::string(60, 'a')), std::regex_error);
}

} // namespace
