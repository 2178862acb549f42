#include "arborist/stores/common_part/pattern_states.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

struct StatesCase { const char* name; std::string most; std::string more; };
void PrintTo(const StatesCase& statesCase, std::ostream* out) { *out << statesCase.name; }
class PatternStates : public testing::TestWithParam<StatesCase> {};

TEST_P(PatternStates, MayBeAThousand)
{
    EXPECT_FALSE(HasTooManyStates(GetParam().most));
    EXPECT_TRUE(HasTooManyStates(GetParam().more));
}

std::string Times(int count, const std::string& text)
{
    std::string all;
    for (int number = 0; number < count; ++number) {
        all += text;
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Table, PatternStates, testing::Values(
    StatesCase{"Letters", Times(1000, "a"), Times(1001, "a")},
    StatesCase{"Escapes", Times(1000, "\\d"), Times(1001, "\\d")},
    StatesCase{"ControlEscapes", Times(1000, "\\ca"), Times(1001, "\\ca")},
    StatesCase{"Classes", Times(1000, "[a-c]"), Times(1001, "[a-c]")},
    StatesCase{"ClassesWithBrackets", Times(1000, "[\\](]"), Times(1001, "[\\](]")},
    StatesCase{"ClassesWithNames", Times(1000, "[[:alpha:](]"), Times(1001, "[[:alpha:](]")},
    StatesCase{"ClassesWithElements", Times(1000, "[[.].][=a=]]"), Times(1001, "[[.].][=a=]]")},
    StatesCase{"Groups", Times(333, "()") + "a", Times(333, "()") + "aa"},
    StatesCase{"GroupsThatAreNotKept", Times(333, "(?:)") + "a", Times(333, "(?:)") + "aa"},
    StatesCase{"Alternatives", Times(250, "a|"), Times(250, "a|") + "a"},
    StatesCase{"Repetitions", Times(333, "a*") + "a", Times(333, "a+") + "aa"},
    StatesCase{"Optionals", Times(333, "a?") + "a", Times(333, "a?") + "aa"},
    StatesCase{"Counts", "a{333}", "a{334}"},
    StatesCase{"CountsWithoutAnEnd", "a{333,}", "a{334,}"},
    StatesCase{"RangesOfCounts", "a{1,333}", "a{1,334}"},
    StatesCase{"CountsOfCounts", "a{15}{18}", "a{18}{18}"},
    StatesCase{"CountsOfGroups", "(abc){110}", "(abc){130}"},
    StatesCase{"CountsOfGroupsInGroups", "((a{3}){3}){5}b{9}", "((a{3}){3}){50}b{9}"},
    StatesCase{"CountsOfTheLastLetter", Times(600, "a") + "b{100}", Times(800, "a") + "b{100}"}),
    CaseName());

TEST(PatternStatesTest, WhatIsNoPatternHasAnEnd)
{
    for (const std::string pattern : {"", "(", ")", "[", "[[:", "[[", "{", "{9", "a{,", "\\", "\\c", "(?", "[\\", "|", "a{}"}) {
        EXPECT_FALSE(HasTooManyStates(pattern)) << pattern;
    }
    EXPECT_TRUE(HasTooManyStates("a{18446744073709551617}"));
    EXPECT_TRUE(HasTooManyStates("aaa){400}"));
}

} // namespace
