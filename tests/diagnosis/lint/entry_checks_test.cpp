#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/fixes.h"
#include "diagnosis/lint/lint.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::lint::LintFolder;
using testing::ElementsAreArray;
using testing::HasSubstr;

// A rule set whose tree has the basic events "E" and "F", and these children of the rule file's root.
void Write(const TempDir& dir, const std::string& sections, const std::string& events = "")
{
    dir.Write("FaultTrees.xml",
        "<F version=\"1\"><Laptop><T id=\"T\" version=\"1\" type=\"t\"><Intermediate-Event><ID>T</ID><Or-Gate>"
        "<Basic-Event><ID>E</ID></Basic-Event><Basic-Event><ID>F</ID></Basic-Event>" + events
        + "</Or-Gate></Intermediate-Event></T></Laptop></F>");
    dir.Write("FaultTreeRules.xml", "<R>\n" + sections + "</R>\n");
}

std::string Alternatives(const std::string& alternatives)
{
    return "<EventRules><Laptop><Event><ID>E</ID>" + alternatives + "</Event></Laptop></EventRules>\n";
}

std::string Named(const std::string& names)
{
    return "<Rule>" + names + "</Rule>";
}

std::string Rules(const std::string& rules)
{
    return "<RuleList><Laptop><rule>" + rules + "</rule></Laptop></RuleList>\n";
}

const std::string A = "<Rule-name>a</Rule-name>";
const std::string B = "<Rule-name>b</Rule-name>";

std::string Group(const std::string& rules)
{
    return "<or type=\"multipleRule\"><and>" + rules + "</and></or>\n";
}

struct EntryCase {
    const char* name;
    const char* check;
    std::string sections;
    std::vector<std::string> messages;
};
void PrintTo(const EntryCase& entry, std::ostream* out) { *out << entry.sections; }
class EntryChecks : public testing::TestWithParam<EntryCase> {};

TEST_P(EntryChecks, FindWhatIsWrongWithAnEntry)
{
    const TempDir dir;
    Write(dir, GetParam().sections);
    diagnosis::lint::LintOptions options;
    options.only = {GetParam().check};
    std::vector<std::string> messages;
    for (const auto& finding : LintFolder(dir.Path(), options).findings) {
        messages.push_back(finding.message);
    }
    EXPECT_THAT(messages, ElementsAreArray(GetParam().messages));
}

INSTANTIATE_TEST_SUITE_P(Alternatives, EntryChecks, testing::Values(
    EntryCase{"WithoutARule", "A305", Alternatives("<or type=\"singleRule\"/>" + Group("")),
        {"an alternative of the event \"E\" names no rule", "an alternative of the event \"E\" names no rule"}},
    EntryCase{"WithTwoNames", "A306", Alternatives("<or type=\"singleRule\">" + Named(A + B) + "</or>"),
        {"a \"Rule\" of the event \"E\" has a second name"}},
    EntryCase{"WithARuleTwice", "A308", Alternatives(Group(Named(A) + Named(A))),
        {"an alternative of the event \"E\" names a rule twice"}},
    EntryCase{"ThatAreEqual", "A308", Alternatives(Group(Named(A) + Named(B)) + Group(Named(B) + Named(A))),
        {"an alternative of the event \"E\" adds nothing to another one"}},
    EntryCase{"OneOfWhichHasMore", "A308", Alternatives(Group(Named(A) + Named(B)) + "<or type=\"singleRule\">" + Named(B) + "</or>"),
        {"an alternative of the event \"E\" adds nothing to another one"}}), CaseName());

std::string Code(const std::string& name, const std::string& filters)
{
    return "<codeRule name=\"" + name + "\" " + filters + "><detectInfo id=\"" + name + "\"/></codeRule>\n";
}

std::string GroupOf(const std::string& one, const std::string& other)
{
    return Alternatives(Group(Named(A) + Named(B) + Named("<Rule-name>none</Rule-name>"))) + Rules(Code("a", one) + Code("b", other));
}

INSTANTIATE_TEST_SUITE_P(Groups, EntryChecks, testing::Values(
    EntryCase{"OfTwoScenes", "A310", GroupOf("detectScene=\"1\"", "detectScene=\"2\""),
        {"a group of the event \"E\" never holds: the rules \"a\" and \"b\" exclude each other by \"detectScene\""}},
    EntryCase{"OfTwoProducts", "A310", GroupOf("detectScene=\"1\" production=\"X\"", "detectScene=\"1\" production=\"Y\""),
        {"a group of the event \"E\" never holds: the rules \"a\" and \"b\" exclude each other by \"production\""}},
    EntryCase{"OfAProductOnABlackList", "A310", GroupOf("detectScene=\"1\" production=\"X\"", "detectScene=\"1\" blackProducts=\"X,Y\""),
        {"a group of the event \"E\" never holds: the rules \"a\" and \"b\" exclude each other by \"blackProducts\""}},
    EntryCase{"OfAProductOnTheFirstBlackList", "A310", GroupOf("detectScene=\"1\" blackProducts=\"X\"", "detectScene=\"1\" production=\"X\""),
        {"a group of the event \"E\" never holds: the rules \"a\" and \"b\" exclude each other by \"blackProducts\""}},
    EntryCase{"ThatMayHold", "A310", GroupOf("detectScene=\"12\" production=\"X,Z\"", "detectScene=\"2\" production=\"Y,Z\""), {}},
    EntryCase{"OfARuleWithoutScenes", "A310", GroupOf("", "detectScene=\"2\""), {}}), CaseName());

std::string Section(const std::string& name, const std::string& content)
{
    return "<" + name + "><Laptop>" + content + "</Laptop></" + name + ">\n";
}

INSTANTIATE_TEST_SUITE_P(Entries, EntryChecks, testing::Values(
    EntryCase{"WithBlanksInAnId", "A211", Section("EventFaultDescriptions", "<Event><ID> E\t</ID><Descriptions/></Event>"),
        {"the id \"E\" has blanks around it"}},
    EntryCase{"WithBlanksInARuleName", "A211", Alternatives("<or type=\"singleRule\">" + Named("<Rule-name> a</Rule-name>") + "</or>")
            + Rules(Code("a", "") + Code(" b", "")),
        {"the rule name \"a\" has blanks around it", "the name of the rule \"b\" has blanks around it"}},
    EntryCase{"WithoutRules", "A301", Section("EventRules", "<Event><ID>E</ID></Event>"),
        {"the entry of the event \"E\" names no rule", "no entry of \"EventRules\" is for the event \"F\""}},
    EntryCase{"WithoutBlanks", "A211", Section("EventRules", "<Event><ID>E</ID></Event>"), {}}), CaseName());

TEST(EntryFixes, WriteNamesWithSignsAsEntities)
{
    const TempDir dir;
    Write(dir, Alternatives("<or type=\"singleRule\">" + Named("<Rule-name>other</Rule-name>") + "</or>")
        + "<RuleList><Laptop><rule><codeRule name='&lt;a&amp;&quot;&apos;rule ' detectScene=\"1\"><detectInfo id=\"C\"/></codeRule></rule></Laptop></RuleList>\n");
    diagnosis::lint::LintOptions options;
    for (const auto& fix : diagnosis::lint::FixesOf(LintFolder(dir.Path(), options).findings, true)) {
        ASSERT_EQ(WriteFix(fix), std::nullopt);
    }
    EXPECT_THAT(dir.Read("FaultTreeRules.xml"), HasSubstr("name='&lt;a&amp;&quot;&apos;rule'"));
}

} // namespace
