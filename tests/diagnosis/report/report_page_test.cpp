#include "diagnosis/report/report_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/report/html.h"

namespace {

using diagnosis::DetectionReport;
using diagnosis::Failure;
using diagnosis::ReportPage;
using testing::HasSubstr;
using testing::Not;

TEST(ReportPageTest, AFailureIsShownInsteadOfADiagnosis)
{
    DetectionReport report;
    report.bundle = "devices/<b>";
    report.moment = "2024-05-20 12:00:00";
    report.failure = Failure{"bad_bundle", "b & c is missing"};
    const std::string page = ReportPage(report);
    EXPECT_THAT(page, HasSubstr("<title>Not diagnosed: devices/&lt;b&gt;</title>"));
    EXPECT_THAT(page, HasSubstr("<p>b &amp; c is missing</p>\n<p class=\"quiet\">[bad_bundle]</p>"));
    EXPECT_THAT(page, Not(HasSubstr("As of")));
    EXPECT_THAT(page, Not(HasSubstr("<h2>Trees</h2>")));
}

TEST(ReportPageTest, WarningsHaveTheirPlaceCodeAndCheck)
{
    DetectionReport report;
    report.warnings = {{"missing_file", "node/x: no such file"},
        {"rule_set", "rule \"<r>\" has no scene", "A401", "rules/FaultTreeRules.xml", 12}};
    const std::string page = ReportPage(report);
    EXPECT_THAT(page, HasSubstr("<li>node/x: no such file <span class=\"quiet\">[missing_file]</span></li>\n"
        "<li>rules/FaultTreeRules.xml:12: rule &quot;&lt;r&gt;&quot; has no scene <span class=\"quiet\">[rule_set, A401]"
        "</span></li>\n"));
}

TEST(ReportPageTest, WithoutWarningsThereIsNoSectionForThem)
{
    EXPECT_THAT(ReportPage({}), Not(HasSubstr("id=\"warnings\"")));
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
