#include "arborist/stores/common_part/file_name_pattern.h"

#include <functional>
#include <regex>
#include <string>

#include <pthread.h>

#include <gtest/gtest.h>

#include "arborist/frame/rule_set_summary.h"
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
    const std::string longClass = "[" + std::string(4094, 'a') + "]";
    EXPECT_FALSE(Matches(longClass, "b"));
    EXPECT_THROW(Matches(longClass + "a", "b"), std::regex_error);
    EXPECT_FALSE(Matches(std::string(1000, 'a'), "b"));
    EXPECT_THROW(Matches(std::string(1001, 'a'), "b"), std::regex_error);
}

TEST(FileNamePatternTest, IsOneOfTheLibraryIfItCompiles)
{
    EXPECT_TRUE(IsFileNamePattern(".*/usage\\.db"));
    EXPECT_TRUE(IsFileNamePattern("(.)\\1"));
    EXPECT_FALSE(IsFileNamePattern("*.db"));
    EXPECT_FALSE(IsFileNamePattern("(usage"));
    EXPECT_TRUE(IsFileNamePattern(std::string(1000, 'a')));
    EXPECT_FALSE(IsFileNamePattern(std::string(1001, 'a')));
    EXPECT_FALSE(IsFileNamePattern(std::string(4097, '[')));
}

// A thread with the smallest stack that a detection may have.
class SmallStack {
public:
    static void Run(std::function<void()> work)
    {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, 1024 * 1024);
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attributes, Call, &work), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
    }

private:
    static void* Call(void* work)
    {
        (*static_cast<std::function<void()>*>(work))();
        return nullptr;
    }
};

std::string Times(int count, const std::string& text)
{
    std::string all;
    for (int number = 0; number < count; ++number) {
        all += text;
    }
    return all;
}

class FileNamePatternOnASmallStack : public testing::TestWithParam<std::string> {};

TEST_P(FileNamePatternOnASmallStack, DoesNotOverflowIt)
{
    SmallStack::Run([] {
        for (const std::size_t length : {1U, 20U, 2000U, 4095U}) {
            try {
                Matches(GetParam(), std::string(length, 'a'));
            } catch (const std::regex_error&) {
                continue; // refused, in time
            }
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Table, FileNamePatternOnASmallStack, testing::Values(
    ".*(){16000}", "(a{0}){16000}", "(?:|a){16000}", "(){4000}", Times(2000, "(") + Times(2000, ")"),
    Times(333, "(") + Times(333, ")"), "(){300}", "(?:|a){150}.*", Times(190, "(") + "a" + Times(190, ")*"), ".{0,300}",
    "(.)\\1*", Times(100, "(") + "." + Times(100, ")") + "*\\1", Times(5, "(") + "." + Times(5, ")") + "*\\1",
    "(.)\\1" + Times(150, "(") + "a" + Times(150, ")*"), Times(240, "(?=") + Times(240, ")") + "(.)\\1*"));

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
