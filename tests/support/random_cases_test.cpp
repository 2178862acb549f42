#include "tests/support/random_cases.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

TEST(RandomCasesTest, RunsAsManyAsTheTestAsksForUnlessTheEnvironmentNamesANumber)
{
    unsetenv("ARBORIST_CASES");
    EXPECT_EQ(RandomCases(7).GetCount(), 7);
    setenv("ARBORIST_CASES", "12", 1);
    EXPECT_EQ(RandomCases(7).GetCount(), 12);
    unsetenv("ARBORIST_CASES");
}

TEST(RandomCasesTest, TheSameSeedGivesTheSameCases)
{
    unsetenv("ARBORIST_SEED");
    EXPECT_EQ(RandomCases(1).Text("abcdefgh", 20), RandomCases(1).Text("abcdefgh", 20));
    setenv("ARBORIST_SEED", "1", 1);
    RandomCases first(1);
    setenv("ARBORIST_SEED", "2", 1);
    RandomCases second(1);
    unsetenv("ARBORIST_SEED");
    EXPECT_EQ(second.GetSeed(), 2U);
    EXPECT_NE(first.Text("abcdefgh", 1000), second.Text("abcdefgh", 1000));
}

TEST(RandomCasesTest, PiecesAndCharactersAreTakenFromTheirSets)
{
    RandomCases cases(1);
    EXPECT_EQ(cases.Text("abc", 100).find_first_not_of("abc"), std::string::npos);
    EXPECT_EQ(cases.Join({"ab"}, 5).size() % 2, 0U);
    EXPECT_EQ(cases.Below(1), 0U);
    EXPECT_EQ(cases.OneOf({"only"}), "only");
}

} // namespace
