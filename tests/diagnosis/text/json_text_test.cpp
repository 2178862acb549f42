#include "diagnosis/text/json_text.h"

#include <gtest/gtest.h>

namespace {

TEST(JsonTextTest, AnErrorHasItsPlaceAndAReasonThatIsCut)
{
    std::string problem;
    EXPECT_FALSE(diagnosis::ParseJson("{\n \"a\": tru}", problem).has_value());
    EXPECT_EQ(problem, "line 2, column 7: Syntax error: value, object or array expected.");
    // A number and a key that are quoted in the reason.
    for (const std::string& text : {"[1" + std::string(1000000, '0') + "e999]",
             "{\"" + std::string(1000000, 'k') + "\": 1, \"" + std::string(1000000, 'k') + "\": 1}"}) {
        EXPECT_FALSE(diagnosis::ParseJson(text, problem).has_value());
        EXPECT_EQ(problem.rfind("line 1, column ", 0), 0U);
        EXPECT_EQ(problem.substr(problem.size() - 3), "...");
        EXPECT_LT(problem.size(), 300U);
    }
}

} // namespace
