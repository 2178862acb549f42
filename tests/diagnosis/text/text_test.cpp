#include <gtest/gtest.h>

#include "diagnosis/text/json_text.h"
#include "diagnosis/text/json_writer.h"
#include "diagnosis/text/near_match.h"
#include "diagnosis/text/printable.h"

namespace {

using diagnosis::JsonWriter;
using diagnosis::NearMatch;
using diagnosis::Printable;

TEST(NearMatchTest, FindsSlipsAndIgnoresWhatIsFar)
{
    const std::vector<std::string> keys = {"treeTag", "ruleFileDir", "device", "now", "tz"};
    EXPECT_EQ(NearMatch("treetag", keys), "treeTag");
    EXPECT_EQ(NearMatch("TREETAG", keys), "treeTag");
    EXPECT_EQ(NearMatch("ruleFileDirs", keys), "ruleFileDir");
    EXPECT_EQ(NearMatch("devcie", keys), "device");
    EXPECT_EQ(NearMatch("n", keys), "");
    EXPECT_EQ(NearMatch("comment", keys), "");
    EXPECT_EQ(NearMatch("", keys), "");
    EXPECT_EQ(NearMatch(std::string(100000, 'a'), keys), "");
}

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

TEST(PrintableTest, KeepsTextAndEscapesWhatSteersATerminal)
{
    EXPECT_EQ(Printable("plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"), "plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
    EXPECT_EQ(Printable("a\nb\t\x1b\x7f"), "a\\x0Ab\\x09\\x1B\\x7F");
    EXPECT_EQ(Printable("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(Printable("\xE2\x80\xAE"), "\\xE2\\x80\\xAE");
    EXPECT_EQ(Printable("\xFF\xC3"), "\\xFF\\xC3");
    EXPECT_EQ(Printable("\xC0\xAF\xED\xA0\x80"), "\\xC0\\xAF\\xED\\xA0\\x80");
    EXPECT_EQ(Printable(std::string("a\0b", 3)), "a\\x00b");
}

TEST(PrintableTest, NothingIsShownAsEmptyAndListsInOneLine)
{
    EXPECT_EQ(diagnosis::Shown(""), "(empty)");
    EXPECT_EQ(diagnosis::Shown("a\n"), "a\\x0A");
    EXPECT_EQ(diagnosis::Joined({"a", "", "b\x1b"}, " + "), "a + (empty) + b\\x1B");
    EXPECT_EQ(diagnosis::Joined({}, ", "), "");
}

TEST(JsonWriterTest, KeepsTheOrderOfMembersAndEscapesTexts)
{
    JsonWriter json;
    json.BeginObject().Text("b", "q\"\\\n\x01").Key("a").BeginArray().Number(-5).Bool(true).Null().EndArray();
    json.Key("c").Texts({"x", "\xff"}).Key("d").BeginObject().EndObject().EndObject();
    EXPECT_EQ(json.Line(), "{\"b\": \"q\\\"\\\\\\n\\u0001\", \"a\": [-5, true, null], \"c\": [\"x\", \"\xEF\xBF\xBD\"], "
                           "\"d\": {}}");
}

} // namespace
