#include "diagnosis/detection/bad_pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(BadPatternTest, OneThatIsTooLongIsNamedAndNotCompiled)
{
    const std::string pattern(1000000, '(');
    EXPECT_THAT(diagnosis::BadPatternMessage({{}, {{"LONG", pattern}, {"FINE", ".*"}}, {}}, "too long"),
        AllOf(HasSubstr(pattern + "\" of the defDBTable \"LONG\""), testing::Not(HasSubstr("FINE"))));
}

} // namespace
