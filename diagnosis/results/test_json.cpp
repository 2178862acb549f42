#include "diagnosis/results/test_json.h"

#include <map>

#include "diagnosis/cases/difference_text.h"
#include "diagnosis/results/detection_json.h"
#include "diagnosis/text/json_writer.h"
#include "diagnosis/text/markup.h"

namespace diagnosis {

namespace {

using cases::CaseOutcome;
using cases::Difference;

void WriteEntries(JsonWriter& json, const char* key, const std::vector<Difference::Entry>& entries)
{
    json.Key(key).BeginArray();
    for (const Difference::Entry& entry : entries) {
        json.BeginObject().Text("text", entry.text).Text("note", entry.note).EndObject();
    }
    json.EndArray();
}

void WriteCase(JsonWriter& json, const CaseOutcome& outcome)
{
    json.BeginObject().Text("file", outcome.file).Number("line", outcome.line).Text("name", outcome.name);
    json.Bool("passed", outcome.HasPassed()).Bool("reviewed", outcome.isReviewed);
    json.Key("differences").BeginArray();
    for (const Difference& difference : outcome.differences) {
        json.BeginObject().Text("subject", difference.subject);
        WriteEntries(json, "missing", difference.missing);
        WriteEntries(json, "unexpected", difference.unexpected);
        json.EndObject();
    }
    json.EndArray();
    if (outcome.failure) {
        WriteError(json, *outcome.failure);
    }
    json.EndObject();
}

void WriteCoverage(JsonWriter& json, const cases::RuleSetCoverage& coverage)
{
    json.BeginObject().Text("rules", coverage.folder).Text("tag", coverage.tag);
    json.Count("covered", coverage.Covered());
    json.Count("total", coverage.Total());
    json.Key("uncovered").BeginArray();
    for (const cases::CoverageItem& item : coverage.items) {
        if (item.Covered() < 2) {
            json.BeginObject().Text("file", item.file).Number("line", item.line);
            json.Text("kind", cases::CoverageKindText(item.kind)).Text("subject", item.subject);
            json.Key("never").Texts(item.Missing()).EndObject();
        }
    }
    json.EndArray().EndObject();
}

std::string FailureText(const CaseOutcome& outcome)
{
    std::string text = outcome.failure ? outcome.failure->message + "\n" : "";
    for (const Difference& difference : outcome.differences) {
        text += cases::DifferenceText(difference, "");
    }
    return text;
}

std::string JunitCase(const CaseOutcome& outcome)
{
    const std::string start = "    <testcase classname=\"" + Markup(outcome.file) + "\" name=\"" + Markup(outcome.name)
        + "\" file=\"" + Markup(outcome.file) + "\" line=\"" + std::to_string(outcome.line) + "\"";
    if (outcome.HasPassed()) {
        return start + "/>\n";
    }
    const std::string word = outcome.failure ? "error" : "failure";
    const std::string message = outcome.failure ? outcome.failure->message : outcome.differences.front().subject;
    return start + ">\n      <" + word + " message=\"" + Markup(message) + "\">" + Markup(FailureText(outcome)) + "</"
        + word + ">\n    </testcase>\n";
}

struct Suite {
    std::string cases;
    std::size_t tests = 0;
    std::size_t failures = 0;
    std::size_t errors = 0;
};

std::string Counts(const Suite& suite)
{
    return "\" tests=\"" + std::to_string(suite.tests) + "\" failures=\"" + std::to_string(suite.failures)
        + "\" errors=\"" + std::to_string(suite.errors) + "\">\n";
}

void AddTo(Suite& suite, const std::string& text, bool isFailure, bool isError)
{
    suite.cases += text;
    ++suite.tests;
    suite.failures += isFailure ? 1 : 0;
    suite.errors += isError ? 1 : 0;
}

} // namespace

std::string TestJson(const cases::TestRun& run, bool isOk)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.test.1").Bool("ok", isOk);
    json.Count("total", run.cases.size());
    json.Count("passed", run.Passed());
    json.Count("unreviewed", run.Unreviewed());
    json.Key("cases").BeginArray();
    for (const CaseOutcome& outcome : run.cases) {
        WriteCase(json, outcome);
    }
    json.EndArray().Key("errors").BeginArray();
    for (const Failure& failure : run.failures) {
        json.BeginObject().Text("code", CodeWord(failure.code)).Text("message", failure.message).EndObject();
    }
    json.EndArray();
    if (!run.coverage.empty()) {
        json.Key("coverage").BeginArray();
        for (const cases::RuleSetCoverage& coverage : run.coverage) {
            WriteCoverage(json, coverage);
        }
        json.EndArray();
    }
    return json.EndObject().Line();
}

std::string TestJunit(const cases::TestRun& run)
{
    std::map<std::string, Suite> suites;
    Suite all;
    for (const CaseOutcome& outcome : run.cases) {
        const bool isError = outcome.failure.has_value();
        const bool isFailure = !isError && !outcome.HasPassed();
        AddTo(suites[outcome.file], JunitCase(outcome), isFailure, isError);
        AddTo(all, "", isFailure, isError);
    }
    for (const Failure& failure : run.failures) {
        AddTo(suites["unreadable"], "    <testcase classname=\"unreadable\" name=\"" + Markup(failure.message)
            + "\">\n      <error message=\"" + Markup(failure.message) + "\"/>\n    </testcase>\n", false, true);
        AddTo(all, "", false, true);
    }
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"arborist test" + Counts(all);
    for (const auto& [file, suite] : suites) {
        text += "  <testsuite name=\"" + Markup(file) + Counts(suite) + suite.cases + "  </testsuite>\n";
    }
    return text + "</testsuites>\n";
}

} // namespace diagnosis
