#include "diagnosis/report/report_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/report/html.h"
#include "tests/support/pattern.h"

namespace {

using diagnosis::DetectionReport;
using diagnosis::Failure;
using diagnosis::ReportPage;
using diagnosis::WarningCode;
using testing::HasSubstr;
using testing::Not;

TEST(ReportPageTest, AFailureIsShownInsteadOfADiagnosis)
{
    DetectionReport report;
    report.bundle = "devices/<b>";
    report.moment = "2024-05-20 12:00:00";
    report.failure = Failure{diagnosis::FailureCode::BAD_BUNDLE, "b & c is missing"};
    const std::string page = ReportPage(report);
    EXPECT_THAT(page, HasSubstr("<title>Not diagnosed: devices/&lt;b&gt;</title>"));
    EXPECT_THAT(page, HasSubstr("<p>b &amp; c is missing</p>\n<p class=\"quiet\">[bad_bundle]</p>"));
    EXPECT_THAT(page, Not(HasSubstr("As of")));
    EXPECT_THAT(page, Not(HasSubstr("<h2>Trees</h2>")));
}

TEST(ReportPageTest, WarningsHaveTheirPlaceCodeAndCheck)
{
    DetectionReport report;
    report.warnings = {{WarningCode::NODE_UNREADABLE, "node/x: no such file"},
        {WarningCode::RULE_SET_ERROR,
            {.message = "rule \"<r>\" has no scene", .id = "A401", .file = "rules/FaultTreeRules.xml", .line = 12}}};
    const std::string page = ReportPage(report);
    EXPECT_THAT(page, HasSubstr("<li>node/x: no such file <span class=\"quiet\">[node_unreadable]</span></li>\n"
        "<li>rules/FaultTreeRules.xml:12: rule &quot;&lt;r&gt;&quot; has no scene <span class=\"quiet\">[rule_set_error, A401]"
        "</span></li>\n"));
}

TEST(ReportPageTest, WithoutWarningsThereIsNoSectionForThem)
{
    EXPECT_THAT(ReportPage({}), Not(HasSubstr("id=\"warnings\"")));
}

// A tree T over the event E, whose alarm rule counted one row of a log that began two days ago.
diagnosis::TreeReport ShortTree(Evidence::Reason reason, Evidence::Check check)
{
    using Evidence::EventState;
    diagnosis::TreeReport report{std::make_shared<FaultTreeResult>("T"), {}, {}};
    Evidence::Window window;
    window.firstId = window.lastId = 7;
    window.kind = "latest";
    window.threshold = 3;
    window.start.emplace().periodDays = 7;
    window.count = {1, 0, 0, 1, 7, Evidence::Measure::ROWS};
    window.count.coveredDays = 2;
    window.reason = reason;
    Evidence::Rule rule;
    rule.name = "r";
    rule.part = Evidence::Alarm{{window}};
    report.tree.evidence.push_back({"E", "", false, Evidence::Reason::NONE, {{false, {rule}}}});
    report.tree.events = {
        {{0, Evidence::EventType::INTERMEDIATE, Evidence::GateType::OR, "T", "", "", EventState::ABSENT},
            diagnosis::RecordedEvent::NONE, 2},
        {{1, Evidence::EventType::BASIC, Evidence::GateType::NONE, "E", "", "", EventState::ABSENT, false, check}, 0, 2, 0}};
    report.verdict.checks.Add(check);
    return report;
}

std::string PageOf(const diagnosis::TreeReport& tree)
{
    DetectionReport report;
    report.trees = {tree};
    return ReportPage(report);
}

TEST(ReportPageTest, AWindowNamesTheDaysThatTheLogCovers)
{
    EXPECT_THAT(PageOf(ShortTree(Evidence::Reason::WINDOW_SHORT, Evidence::Check::DECIDED)),
        HasSubstr("(period of 7 days), of which the log covers 2 days: 1 row; reached 1 of 3 rows, 2 missing"));
}

TEST(ReportPageTest, ThePictureNamesWhatIsOpen)
{
    const auto tree = ShortTree(Evidence::Reason::LOG_DAMAGED, Evidence::Check::DATA_MISSING);
    EXPECT_THAT(PageOf(tree), HasSubstr(">FALSE</text><text class=\"open\" x=\"10\" y=\"52\">open: no_data</text>"));
    const auto decided = ShortTree(Evidence::Reason::WINDOW_SHORT, Evidence::Check::DECIDED);
    EXPECT_THAT(PageOf(decided), Not(HasSubstr("open: ")));
}

// What a browser shows of it is looked at in tests/tools/commands/report_browser_test.py.
TEST(ReportPageTest, IsMadeForPaperPhonesAndDarkScreens)
{
    const std::string page = PageOf(ShortTree(Evidence::Reason::WINDOW_SHORT, Evidence::Check::DECIDED));
    const auto style = [&page](const std::string& medium) {
        const auto start = page.find("@media " + medium + " {");
        EXPECT_NE(start, std::string::npos) << medium;
        return page.substr(start, page.find("\n}", start) - start);
    };
    const std::string paper = style("print");
    EXPECT_THAT(paper, HasSubstr(".card, .index li, .picture { break-inside: avoid; }"));
    EXPECT_THAT(paper, HasSubstr(".picture { max-width: 100%; max-height: 24cm; height: auto; }"));
    EXPECT_THAT(paper, HasSubstr("details::details-content { content-visibility: visible;"));
    EXPECT_THAT(style("screen and (prefers-color-scheme: dark)"), HasSubstr("--paper:"));
    EXPECT_THAT(style("(max-width: 40rem)"), HasSubstr(".card dl { grid-template-columns: 1fr;"));
    EXPECT_THAT(page, HasSubstr("<meta name=\"viewport\""));
    // Where the top event is drawn, which the picture shows first.
    EXPECT_THAT(page, ContainsPattern("<span class=\"start\" style=\"top: [0-9]+px\"></span>\n<svg"));
}

TEST(ReportPageTest, LoadsAndRunsNothing)
{
    const std::string page = ReportPage({});
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'\""));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("<link")));
}

TEST(HtmlTest, TextsAreEscapedAndAnEmptyParagraphIsNothing)
{
    EXPECT_EQ(diagnosis::Html("b", "<i>", "id"), "<b class=\"id\">&lt;i&gt;</b>");
    EXPECT_EQ(diagnosis::Paragraph(""), "");
}

} // namespace
