#include "diagnosis/lint/output/formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/base/check.h"

namespace diagnosis::lint {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr Check BROKEN{"A1", Severity::ERROR, CheckClass::STATIC, "a, b: c", "Finds.", "it fails", nullptr};
constexpr Check ODD{"A2", Severity::WARNING, CheckClass::STATIC, "odd", "Finds.", "it runs", nullptr};
constexpr Check DEAD{"A3", Severity::INFO, CheckClass::STATIC, "dead", "Finds.", "nothing happens", nullptr};

Finding FindingOf(const Check& check, const std::string& file, int line, int column)
{
    Finding finding;
    finding.check = &check;
    finding.file = file;
    finding.line = line;
    finding.column = column;
    finding.columns = column == 0 ? 0 : 2;
    finding.element = "A/B[x]";
    finding.message = "100 % <wrong>";
    finding.fingerprint = "f-" + std::string(check.id);
    return finding;
}

// An error with a place and help that can be mended safely, a warning with a line that can be mended otherwise, and an
// info about a whole file, twice.
LintRun MadeRun()
{
    LintRun run;
    run.files = {"/r9/a,b:c.xml", "r/d \xC3\xA4.xml", "clean.xml"};
    run.findings = {FindingOf(BROKEN, "/r9/a,b:c.xml", 7, 3), FindingOf(ODD, "r/d \xC3\xA4.xml", 9, 0),
        FindingOf(DEAD, "r/d \xC3\xA4.xml", 0, 0), FindingOf(DEAD, "r/d \xC3\xA4.xml", 0, 0)};
    run.findings[0].help = "mend it";
    run.findings[0].edits.push_back({1, 1, "a", "b", true});
    run.findings[1].edits.push_back({1, 1, "a", "b", false});
    return run;
}

TEST(LintFormatsTest, AnnotationsHaveTheirSignsEscaped)
{
    EXPECT_EQ(RunGithub(MadeRun()),
        "::error file=/r9/a%2Cb%3Ac.xml,line=7,col=3,endColumn=5,title=A1 a%2C b%3A c::100 %25 <wrong>; mend it\n"
        "::warning file=r/d \xC3\xA4.xml,line=9,title=A2 odd::100 %25 <wrong>\n"
        "::notice file=r/d \xC3\xA4.xml,title=A3 dead::100 %25 <wrong>\n"
        "::notice file=r/d \xC3\xA4.xml,title=A3 dead::100 %25 <wrong>\n");
}

TEST(LintFormatsTest, TheQualityReportHasALineForEachFinding)
{
    EXPECT_THAT(RunGitlab(MadeRun()), AllOf(
        HasSubstr(R"("fingerprint": "f-A1", "severity": "major", "location": {"path": "/r9/a,b:c.xml", "lines": {"begin": 7}})"),
        HasSubstr(R"("severity": "minor", "location": {"path": "r/d ä.xml", "lines": {"begin": 9}})"),
        HasSubstr(R"("severity": "info", "location": {"path": "r/d ä.xml", "lines": {"begin": 1}})")));
    EXPECT_EQ(RunGitlab({}), "[]\n");
}

TEST(LintFormatsTest, JsonTellsWhatAFixDoes)
{
    const std::string json = RunJson(MadeRun());
    EXPECT_THAT(json, AllOf(HasSubstr(R"("line": 7, "column": 3, "columns": 2, "element": "A/B[x]", "message": "100 % <wrong>", )"
        R"("help": "mend it", "atRunTime": "it fails", "fix": "safe", "fingerprint": "f-A1"})"),
        HasSubstr(R"("line": 9, "element": "A/B[x]", "message": "100 % <wrong>", "atRunTime": "it runs", "fix": "unsafe")"),
        HasSubstr(R"("atRunTime": "nothing happens", "fix": "none")"),
        HasSubstr(R"("errors": 1, "warnings": 1, "infos": 2, "known": 0, "fixed": 0})")));
}

TEST(LintFormatsTest, SarifNamesEachRuleOnceAndFilesAsUris)
{
    const std::string sarif = RunSarif(MadeRun());
    EXPECT_THAT(sarif, AllOf(HasSubstr(R"("uri": "file:///r9/a%2Cb%3Ac.xml"}, "region": {"startLine": 7, "startColumn": 3, "endColumn": 5})"),
        HasSubstr(R"("uri": "r/d%20%C3%A4.xml"}, "region": {"startLine": 9}})"), HasSubstr(R"("uri": "r/d%20%C3%A4.xml"}})"),
        HasSubstr(R"("message": {"text": "100 % <wrong>; mend it"})"), HasSubstr(R"({"level": "error"})"),
        HasSubstr(R"({"level": "warning"})"), HasSubstr(R"("ruleId": "A3", "level": "note", "message": {"text": "100 % <wrong>"})")));
    EXPECT_EQ(sarif.find("\"id\": \"A3\""), sarif.rfind("\"id\": \"A3\""));
}

TEST(LintFormatsTest, JunitHasAFailureForEachFindingAndASuccessForACleanFile)
{
    const std::string junit = RunJunit(MadeRun());
    EXPECT_THAT(junit, AllOf(HasSubstr("tests=\"5\" failures=\"4\""), HasSubstr("<testcase classname=\"lint\" name=\"clean.xml\"/>"),
        HasSubstr("100 % &lt;wrong&gt;\">/r9/a,b:c.xml:7: a, b: c; mend it</failure>"),
        HasSubstr("\">r/d \xC3\xA4.xml:9: odd</failure>"), Not(HasSubstr("<wrong>"))));
}

TEST(LintFormatsTest, LinesForEditorsHaveAPlaceInAnyCase)
{
    EXPECT_THAT(RunShort(MadeRun()), AllOf(HasSubstr("/r9/a,b:c.xml:7:3: error: 100 % <wrong> [A1]\n"),
        HasSubstr("r/d \xC3\xA4.xml:9:1: warning: "), HasSubstr("r/d \xC3\xA4.xml:1:1: info: ")));
}

TEST(LintFormatsTest, CountsAreInWords)
{
    LintRun run = MadeRun();
    EXPECT_EQ(CountsText(run), "1 error, 1 warning, 2 infos");
    run.known = 3;
    run.fixed = 1;
    run.findings.clear();
    EXPECT_EQ(CountsText(run), "no findings, 3 in the baseline, 1 fixed");
}

} // namespace
} // namespace diagnosis::lint
