#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string HOSTILE = "\"]]>--></title></style><script>alert(1)</script><img src=x onerror='alert(2)'>&lt;\\";
// Paths and cut sets are split at "/" and "&": an id that contains one of them is never a root cause.
const std::string HOSTILE_ID = "\"]]>--><script>alert(1)<img src=x onerror='alert(2)'>\\";

// Parses the page like a browser and reports each script, event handler, external link and unclosed element.
constexpr char CHECK_PAGE[] = R"(
import sys, html.parser
VOID = {'meta', 'br', 'img', 'link', 'input', 'hr'}
class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.open, self.findings = [], []
    def handle_starttag(self, tag, attributes):
        if tag in ('script', 'img', 'link', 'iframe', 'object', 'base', 'form'):
            self.findings.append('element ' + tag)
        for name, value in attributes:
            outside = name in ('src', 'href', 'action') and not value.startswith('#')
            if name.startswith('on') or outside:
                self.findings.append('attribute ' + name)
        if tag not in VOID:
            self.open.append(tag)
    def handle_startendtag(self, tag, attributes):
        pass
    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.findings.append('closed without being open: ' + tag)
page = Page()
page.feed(sys.stdin.buffer.read().decode('utf-8'))
page.close()
print('\n'.join(page.findings + ['open at the end: ' + tag for tag in page.open]), end='')
)";

std::string FindingsOf(const std::string& page)
{
    const auto result = RunProcess({"python3", "-c", CHECK_PAGE}, {page, {}, ""});
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
}

class ReportCommandTest : public testing::Test {
protected:
    void SetUp() override { WriteHotBundle(mDir, "b"); }

    void Trees(const TreeXml& trees) const { mDir.Write("b/rules/FaultTrees.xml", trees.Text()); }

    static std::string Report()
    {
        const auto result = RunArborist({"report", "b", "--log-level", "none"});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }

    TempDir mDir;
};

TEST_F(ReportCommandTest, ARootCauseHasACardWithAllItsIds)
{
    const std::string page = Report();
    EXPECT_THAT(page, HasSubstr("<h1>Faults in 1 of 1 tree</h1>"));
    EXPECT_THAT(page, HasSubstr("<li class=\"card\">\n<h4 class=\"id\">HOT</h4><p>Too hot</p>\n"
                                "<dl>\n"
                                "<dt>Description</dt><dd><span class=\"id\">D1</span></dd>\n"
                                "<dt>Suggestions</dt><dd><span class=\"id\">S1</span>, <span class=\"id\">S2</span>"
                                "</dd>\n<dt>Repairs</dt><dd><span class=\"id\">R1</span>, operation <code>clean"
                                "</code><table class=\"extra\"><tr><th>R1</th><th>operation</th><td><code>clean</code>"
                                "</td></tr></table>"));
    EXPECT_THAT(page, HasSubstr("<dt>Way to the top</dt><dd><ul class=\"way\"><li><b class=\"id\">HOT</b>"
                                " <span class=\"arrow\">&rarr;</span> <span class=\"id\">T</span></li></ul></dd>\n"));
}

TEST_F(ReportCommandTest, EvidenceTellsWhyAnEventFired)
{
    EXPECT_THAT(Report(), HasSubstr("<dt>Why</dt><dd><p><span class=\"id\">HOT</span>: node rule <span class=\"id\">hot"
        "</span>: TRUE condition_met</p><ul><li>T = 80 from temperature</li><li>T 80 &gt; 70 (int): holds</li></ul>"));
}

TEST_F(ReportCommandTest, AHealthyTreeSaysSo)
{
    mDir.Write("b/temperature", "20\n");
    const std::string page = Report();
    EXPECT_THAT(page, AllOf(HasSubstr("<h1>No fault found in 1 tree</h1>"),
        HasSubstr("<span class=\"badge sound\">no fault</span>"), Not(HasSubstr("<li class=\"card\">"))));
}

TEST_F(ReportCommandTest, TheTreeIsDrawnWithTheWayOfTheRootCause)
{
    Trees(TreeXml("Tag").Tree("T", Or({Basic("HOT"), Intermediate("G",
        And({Basic("HOT"), Xml("House").TextChild("ID", "U")}))})));
    const std::string page = Report();
    EXPECT_THAT(page, HasSubstr("aria-label=\"Fault tree T with 5 events. Root cause: HOT. The same events"));
    EXPECT_THAT(page, HasSubstr("<text x=\"19\" y=\"22\">AND</text>"));
    EXPECT_THAT(page, HasSubstr("class=\"line path\""));
    EXPECT_THAT(page, HasSubstr("<li><span class=\"word true\">TRUE</span><b class=\"id\">HOT</b>  "
                                "<span class=\"quiet\">(root cause, basic)</span><p class=\"rule\">node rule <span "
                                "class=\"id\">hot</span>: TRUE condition_met, T 80 &gt; 70: holds</p></li>\n"));
    EXPECT_THAT(page, HasSubstr("<li><span class=\"word unknown\">UNKNOWN</span><span class=\"id\">U</span>  "
                                "<span class=\"quiet\">(undeveloped)</span></li></ul></li></ul></li></ul>\n"));
}

TEST_F(ReportCommandTest, ACutSetShowsAllItsMembers)
{
    WriteCodeBundle(mDir, "b", {"a", "b"}, BundleJson(R"(, "codeAnswers": {"a": true, "b": true})"));
    Trees(TreeXml("Tag").Tree("T", And({Basic("C1"), Basic("C2")})));
    EXPECT_THAT(Report(), HasSubstr("<p>Cut set of 2 events that are present together:</p><ul class=\"way\"><li><b "
        "class=\"id\">C1</b> <span class=\"arrow\">&rarr;</span> <span class=\"id\">T</span></li><li><b "
        "class=\"id\">C2</b>"));
}

TEST_F(ReportCommandTest, ABranchThatIsWrittenOutTwiceHasOneCard)
{
    Trees(TreeXml("Tag").Tree("T", Or({Basic("HOT"), Basic("HOT")})));
    const std::string page = Report();
    EXPECT_THAT(page, HasSubstr("FAULT, 1 root cause<"));
    const auto first = page.find("<h4 class=\"id\">HOT</h4>");
    EXPECT_NE(first, std::string::npos);
    EXPECT_EQ(page.find("<h4 class=\"id\">HOT</h4>", first + 1), std::string::npos);
}

TEST_F(ReportCommandTest, LargeTreesAreListedAsFarAsTheyAreInError)
{
    std::vector<Xml> events{Basic("HOT")};
    for (int number = 0; number < 3000; ++number) { // left to the host, so that nothing of them is open
        events.push_back(Basic("COLD" + std::to_string(number), {"", "", "", "2"}));
    }
    Trees(TreeXml("Tag").Tree("T", Or(events)));
    const std::string page = Report();
    EXPECT_THAT(page, AllOf(Not(HasSubstr("<svg")), HasSubstr("&quot;arborist graph --format svg&quot; draws it"),
        HasSubstr("<b class=\"id\">HOT</b>"), Not(HasSubstr("COLD")), HasSubstr("3000 events are left out here")));
    EXPECT_THAT(FindingsOf(page), IsEmpty());
}

TEST_F(ReportCommandTest, DeepTreesStayReadableMarkup)
{
    Xml event = Basic("HOT");
    for (int depth = 0; depth < 40; ++depth) {
        event = Intermediate("G" + std::to_string(depth), Or({event}));
    }
    Trees(TreeXml("Tag").Tree("T", Or({event, Basic("LAST")})));
    const std::string page = Report();
    EXPECT_THAT(page, HasSubstr("<span class=\"id\">LAST</span>"));
    EXPECT_THAT(FindingsOf(page), IsEmpty());
}

TEST_F(ReportCommandTest, NoTextOfABundleBecomesMarkup)
{
    const auto hot = ConditionXml({SingleLogicXml(TestXml("gt", "t", "70"))});
    const auto rule = NodeRuleXml(HOSTILE,
        {NodeInfoXml("T", "temperature"), ParamsXml({ParamXml("t", "T", "int")}), hot});
    mDir.Write("b/bundle.json", BundleJson(R"(, "<script>": 1, "device": {"Product": "<script>alert(3)</script>"})"));
    mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Tag").EventRule(HOSTILE_ID, {Single(HOSTILE)}).Rule(rule)
        .FaultDescription(HOSTILE_ID, {HOSTILE}).Solution(HOSTILE_ID, {HOSTILE})
        .Repair(HOSTILE_ID, {{HOSTILE, HOSTILE}}).Text());
    Trees(TreeXml("Tag").Version(HOSTILE).Tree(HOSTILE_ID + "1", And({Intermediate(HOSTILE_ID + "2",
        Or({Basic(HOSTILE_ID, {HOSTILE, HOSTILE, HOSTILE, ""}), Basic("\xFF\x01")}), {HOSTILE, "", "", ""})})));
    const std::string page = Report();
    EXPECT_THAT(page, AllOf(HasSubstr("class=\"card\""), HasSubstr("<dt>Why</dt>"), HasSubstr("&lt;script&gt;")));
    EXPECT_THAT(page, AllOf(Not(HasSubstr("<script")), Not(HasSubstr("<img"))));
    EXPECT_THAT(FindingsOf(page), IsEmpty());
}

TEST_F(ReportCommandTest, WarningsStandOnThePage)
{
    mDir.Write("b/bundle.json", BundleJson(R"(, "detectScen": 1)"));
    EXPECT_THAT(Report(), AllOf(HasSubstr("<h2>Warnings</h2>"), HasSubstr("[unknown_key]")));
}

TEST_F(ReportCommandTest, ThePageTellsOfWhatItIsAbout)
{
    mDir.Write("b/bundle.json", BundleJson(R"(, "now": "2024-05-20 12:00:00", "tz": "CET-1", )"
        R"("device": {"Product": "LT"})"));
    EXPECT_THAT(Report(), AllOf(HasSubstr("<dt>As of</dt><dd>2024-05-20 12:00:00 (CET-1)</dd>"),
        HasSubstr("<dt>Product</dt><dd>LT</dd>"), Not(HasSubstr("<dt>Platform</dt>"))));
}

TEST_F(ReportCommandTest, ABundleThatCantBeDiagnosedHasAPageThatSaysWhy)
{
    Trees(TreeXml("Other"));
    const auto result = RunArborist({"report", "b", "-o", "report.html"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, EndsWith("[no_tree]\n"));
    EXPECT_THAT(mDir.Read("report.html"), AllOf(StartsWith("<!DOCTYPE html>"), HasSubstr("<h1>Not diagnosed</h1>"),
        HasSubstr("no tree under the tag &quot;Tag&quot;")));
}

} // namespace
