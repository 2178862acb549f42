#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char BEFORE[] = "2024-05-01 12:00:00";
constexpr char REPAIR[] = "2024-05-02 12:00:00";
constexpr char AFTER[] = "2024-05-20 12:00:00";

// The first block of JSON in a page of the documentation.
std::string ExampleIn(const std::string& name)
{
    const std::string page = PageOfDocs(name);
    const std::string mark = "```json\n";
    const auto start = page.find(mark) + mark.size();
    return page.substr(start, page.find("\n```", start) - start);
}

class ResultsReportCommandTest : public testing::Test {
protected:
    // A device that had the fault, and what its second bundle says: "again", "gone", "open" or "none" for no such bundle.
    void AddDevice(const std::string& device, bool isRepaired, const std::string& later)
    {
        mLines += LineOf(device + "-1").Now(BEFORE).Device(device).Fault("HEAT", {"FAN_BLOCKED"}).Text();
        LineOf line(device + "-2");
        line.Now(AFTER).Device(device);
        if (isRepaired) {
            line.Repaired("REPAIR_FAN_BLOCKED", REPAIR);
        }
        if (later == "again") {
            line.Fault("HEAT", {"FAN_BLOCKED"});
        } else if (later == "gone") {
            line.NoFault("HEAT");
        } else if (later == "open") {
            line.Undecided("HEAT", "FAN_BLOCKED");
        } else {
            // Without a moment it tells nothing but the repair.
            line.Now("").NoFault("HEAT");
        }
        mLines += line.Text();
    }

    // The twelve devices of docs/results-report.md.
    void ImportTheFleet()
    {
        for (const char* const later : {"again", "gone", "gone", "gone", "open", "none"}) {
            AddDevice("repaired" + std::to_string(mLines.size()), true, later);
        }
        for (const char* const later : {"again", "again", "again", "again", "gone", "none"}) {
            AddDevice("other" + std::to_string(mLines.size()), false, later);
        }
        Import();
    }

    void Import()
    {
        mDir.Write("lines.jsonl", mLines);
        const auto result = RunArborist({"results", "import", "lines.jsonl", "--to", "r.db"});
        EXPECT_EQ(result.status, 0) << result.err;
    }

    static ProcessResult Report(std::vector<std::string> options)
    {
        options.insert(options.begin(), {"results", "report", "r.db"});
        return RunArborist(options);
    }

    TempDir mDir;
    std::string mLines;
};

TEST_F(ResultsReportCommandTest, WritesThePageOfImportedLines)
{
    ImportTheFleet();
    const auto result = Report({"--html", "page.html"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    const std::string page = mDir.Read("page.html");
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(page, AllOf(HasSubstr("<h1>Faults in 17 of 24 bundles, 1 undecided</h1>"), HasSubstr("HEAT: FAN_BLOCKED"),
        HasSubstr("25.0 % (4.6 % to 69.9 %)"), Not(HasSubstr("<script"))));
}

TEST_F(ResultsReportCommandTest, PrintsTheFiguresOfTheDocumentation)
{
    ImportTheFleet();
    const auto result = Report({"--json"});
    EXPECT_THAT(result.out, HasSubstr("\"repairs\": [" + ExampleIn("results-report.md") + "]"));
    const Json::Value figures = ParsedJson(result.out);
    EXPECT_EQ(figures["bundles"]["total"].asInt(), 24);
    EXPECT_THAT(Violations(ParsedJson(PageOfDocs("results-report.schema.json")), figures), IsEmpty());
}

TEST_F(ResultsReportCommandTest, FollowsDevicesForTheDaysThatAreGiven)
{
    ImportTheFleet();
    const Json::Value repair = ParsedJson(Report({"--json", "--within", "10"}).out)["repairs"][0];
    EXPECT_EQ(repair["repaired"]["followed"].asInt(), 0);
    EXPECT_EQ(repair["notSeenAfter"].asInt(), 6);
    EXPECT_EQ(Report({"--json", "--within", "0"}).status, 2);
}

TEST_F(ResultsReportCommandTest, WantsAPageOrTheFigures)
{
    const auto result = Report({});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("--html or --json is required"));
}

TEST_F(ResultsReportCommandTest, RefusesWhatIsNoResultsDatabase)
{
    mDir.Write("r.db", "text");
    const auto result = Report({"--html", "page.html"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, StartsWith("arborist: r.db: "));
    EXPECT_FALSE(mDir.Has("page.html"));
}

TEST_F(ResultsReportCommandTest, ThePageNeverReplacesItsDatabase)
{
    ImportTheFleet();
    const std::string before = mDir.Read("r.db");
    const auto result = Report({"--html", "./r.db"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "arborist: ./r.db: is a file that is read\n");
    EXPECT_EQ(mDir.Read("r.db"), before);
}

TEST_F(ResultsReportCommandTest, TellsAPageThatCannotBeWritten)
{
    Import();
    EXPECT_EQ(Report({"--html", "none/page.html"}).status, 5);
}

} // namespace
