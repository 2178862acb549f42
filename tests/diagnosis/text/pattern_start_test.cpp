#include "diagnosis/text/pattern_start.h"

#include <regex>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/random_cases.h"

namespace {

using diagnosis::MayMatchBeyond;

struct StartCase {
    const char* name;
    const char* pattern;
    const char* start;
    bool expected;
};

void PrintTo(const StartCase& startCase, std::ostream* out) { *out << startCase.pattern << " and " << startCase.start; }

class PatternStart : public testing::TestWithParam<StartCase> {};

TEST_P(PatternStart, IsFoundWhereATextThatBeginsWithItMayMatch)
{
    EXPECT_EQ(MayMatchBeyond(GetParam().pattern, GetParam().start), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Each, PatternStart,
    testing::Values(StartCase{"Letters", "/data/x", "/data/", true}, StartCase{"OtherLetters", "/data/x", "/date", false},
        StartCase{"NothingBehindTheStart", "/data/", "/data/", false}, StartCase{"NoStart", "a", "", true},
        StartCase{"NoPattern", "", "", false}, StartCase{"AnyText", ".*/x", "/data/", true},
        StartCase{"Optional", "/data?x", "/datx", false}, StartCase{"OptionalLeftOut", "/data?x", "/dat", true},
        StartCase{"Repeated", "/a+b", "/aaa", true}, StartCase{"NotRepeated", "/a+b", "/b", false},
        StartCase{"CountedFromNone", "/a{0,3}b", "/", true}, StartCase{"CountedFromOne", "/a{2}b", "/b", false},
        StartCase{"CountsAreNotCounted", "/a{2}b", "/aaa", true}, StartCase{"Lazy", "/a*?b", "/aa", true},
        StartCase{"FirstAlternative", "/a/x|/b/x", "/a/", true}, StartCase{"SecondAlternative", "/a/x|/b/x", "/b/", true},
        StartCase{"NoAlternative", "/a/x|/b/x", "/c/", false}, StartCase{"Group", "/(a|b)/x", "/b/", true},
        StartCase{"OutsideAGroup", "/(a|b)/x", "/c", false}, StartCase{"GroupWithoutNumber", "/(?:ab)+c", "/abab", true},
        StartCase{"LookAhead", "/(?=b)a/x", "/a/", true}, StartCase{"BackReference", "/(a)\\1/x", "/a/b/c/", true},
        StartCase{"BehindABackReference", "/(a)\\10b", "/b", false}, StartCase{"Set", "/[ab]/x", "/a/", true},
        StartCase{"NotInTheSet", "/[ab]/x", "/c", false}, StartCase{"Range", "/[a-c]/x", "/b/", true},
        StartCase{"NotInTheRange", "/[a-c]/x", "/d", false}, StartCase{"Negated", "/[^a]/x", "/a", false},
        StartCase{"MinusAtTheEnd", "/[a-]/x", "/-/", true}, StartCase{"NamedClass", "/[[:digit:]x]/y", "/a/", true},
        StartCase{"EmptySet", "/[]x", "/", false}, StartCase{"EscapeInASet", "/[\\]a]/x", "/]/", true},
        StartCase{"RangeUpToAnEscape", "/[!-\\/]a", "/.", true}, StartCase{"Digit", "/\\d/x", "/7/", true},
        StartCase{"NoDigit", "/\\d/x", "/a", false}, StartCase{"Word", "\\w+/x", "/", false},
        StartCase{"NoSpace", "\\S+", "/data", true}, StartCase{"EscapedSign", "/a\\.b", "/a.", true},
        StartCase{"EscapedSignIsThatAlone", "/a\\.b", "/ax", false}, StartCase{"Hexadecimal", "\\x2fa", "/", true},
        StartCase{"BehindHexadecimal", "\\x2fa", "/b", false}, StartCase{"LineEnd", "a\\nb", "a\n", true},
        StartCase{"Borders", "^/\\bdata$|x", "/dat", true}, StartCase{"NotADigit", "/\\D/x", "/a/", true}, StartCase{"ADigitAfterAll", "/\\D/x", "/7", false},
        StartCase{"NotAWord", "/\\W/x", "/-/", true}, StartCase{"AWordAfterAll", "/\\W/x", "/a", false},
        StartCase{"Unicode", "\\u002fa", "/", true}, StartCase{"ControlLetter", "\\cJa", "\n", true},
        StartCase{"ClassAndMore", "/[\\d-x]/y", "/q/", true}, StartCase{"EscapeAndMinus", "/[\\d\\w]/y", "/-", false},
        StartCase{"RangeUpToABracket", "/[!-[]/y", "/~/", true}, StartCase{"BracketInASet", "/[[a]/y", "/[/", true},
        StartCase{"CountFromAComma", "/a{,3}b", "/", true}, StartCase{"SetThatEndsInABracket", "/[a[", "/", true},
        StartCase{"Unfinished", "/a\\", "/a", true},
        StartCase{"UnfinishedSet", "/[a", "/", true}, StartCase{"UnfinishedCount", "/a{", "/b", false}),
    CaseName());

// A match of a random pattern, cut off anywhere, is a start that the pattern may match beyond.
TEST(PatternStart, IsNeverMissed)
{
    const std::vector<std::string> parts = {"a", "b", "/", ".", "(a|b)", "(?:ab)", "[ab]", "[^a]", "[a-b/]", "\\w", "\\/", "*",
        "+", "?", "{2}", "{0,2}", "*?", "|", "(", ")", "^", "$", "\\b", "(?=a)", "(?!b)", "\\1", "\\d", "[[:alpha:]]"};
    RandomCases random(3000);
    for (int n = 0; n < random.GetCount(); ++n) {
        const std::string pattern = random.Join(parts, 7);
        try {
            const std::regex compiled(pattern);
            for (int i = 0; i < 20; ++i) {
                const std::string text = random.Join({"a", "b", "/", "ab"}, 6);
                for (std::size_t length = 0; length < text.size() && std::regex_match(text, compiled); ++length) {
                    EXPECT_TRUE(MayMatchBeyond(pattern, text.substr(0, length))) << pattern << " matches " << text;
                }
            }
        } catch (const std::regex_error&) {
            MayMatchBeyond(pattern, "/a"); // no pattern, but nothing worse happens
        }
    }
}

} // namespace
