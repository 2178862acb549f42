#include "diagnosis/text/escaped_name.h"

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

struct NameCase { const char* name; std::string id; std::string escaped; };
void PrintTo(const NameCase& nameCase, std::ostream* out) { *out << nameCase.name; }
class OpenPsaName : public testing::TestWithParam<NameCase> {};

TEST_P(OpenPsaName, IsOneThatTheFormatAllows)
{
    EXPECT_EQ(diagnosis::EscapedName(GetParam().id), GetParam().escaped);
    EXPECT_EQ(diagnosis::UnescapedName(GetParam().escaped), GetParam().id);
}

INSTANTIATE_TEST_SUITE_P(Table, OpenPsaName, testing::Values(
    NameCase{"LettersDigitsAndLinesStay", "Hot_2__", "Hot_2__"},
    NameCase{"EmptyHasANameThatNoIdHas", "", "_x_"},
    NameCase{"ADigitInFront", "2A", "_x32A"},
    NameCase{"DashesAndDotsMeanSomethingThere", "A-B.C", "A_x2DB_x2EC"},
    NameCase{"WhatLooksEscapedIsEscaped", "_x2D", "_x5Fx2D"},
    NameCase{"ALineBeforeAnEscape", "_-", "__x2D"},
    NameCase{"BytesBeyondAscii", "\xC3\xA4", "_xC3_xA4"}),
    CaseName());

TEST(UnescapedName, KeepsNamesThatOtherProgramsMade)
{
    for (const char* name : {"pump-2", "a_x41", "a_x4", "a_xZZ", "_x", "2A", "a_x2d"}) {
        EXPECT_EQ(diagnosis::UnescapedName(name), name);
    }
}

} // namespace
