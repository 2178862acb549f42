#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// 2024-05-20 12:00:00 in UTC, the moment of the bundle.
constexpr std::int64_t NOW = 1716206400;

class AsOfTest : public testing::Test {
protected:
    // Three drops, an hour apart, of which the last is one hour after the moment of the bundle.
    void SetUp() override
    {
        WriteDropsBundle(mDir, "b");
        EventLogBuilder().Rows({{NOW - 3600, 1001, "", ""}, {NOW, 1001, "", ""}, {NOW + 3600, 1001, "", ""}})
            .WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    }

    static ProcessResult Detect(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"detect", "b"});
        return RunArborist(arguments);
    }

    TempDir mDir;
};

TEST_F(AsOfTest, RowsLaterThanTheMomentAreHidden)
{
    EXPECT_THAT(Detect({"--as-of", std::to_string(NOW + 3599)}).out, HasSubstr("no fault"));
    EXPECT_THAT(Detect({"--as-of", std::to_string(NOW + 3600)}).out, HasSubstr("1. DROPS"));
}

TEST_F(AsOfTest, NowAloneLeavesTheEndOpenAndTellsOfLaterRows)
{
    const auto open = Detect({"--now", std::to_string(NOW + 3599)});
    EXPECT_THAT(open.out, HasSubstr("1. DROPS"));
    EXPECT_THAT(open.err, HasSubstr("1 of 3 rows of the event log are later than now, and count"));
    EXPECT_THAT(Detect({"--as-of", std::to_string(NOW + 3599)}).err, IsEmpty());
}

TEST_F(AsOfTest, TheMomentIsTakenForNow)
{
    EXPECT_THAT(Detect({"--as-of", "2024-06-20 12:00:00", "--tz", "UTC"}).out, HasSubstr("no fault")); // 7 days back
}

TEST_F(AsOfTest, ARepairThatWasRecordedLaterCountsAsNotRecorded)
{
    RunArborist({"repair", "record", "b", "R", "--now", std::to_string(NOW + 7200)});
    EXPECT_THAT(Detect({"--now", std::to_string(NOW + 7200)}).out, HasSubstr("no fault"));
    EXPECT_THAT(Detect({"--as-of", std::to_string(NOW + 7199)}).out, HasSubstr("1. DROPS"));
}

TEST_F(AsOfTest, TheVersionStaysThatOfTheBundle)
{
    std::string rules = mDir.Read("b/rules/FaultTreeRules.xml");
    mDir.Write("b/rules/FaultTreeRules.xml", rules.insert(rules.find("Eventid_Max"), "BeginFlag=\"2\" "));
    EventLogBuilder().Rows({{NOW - 3, 1001, "4.1", ""}, {NOW - 2, 1001, "4.1", ""}, {NOW - 1, 1001, "4.1", ""},
        {NOW + 1, 1001, "5.0", ""}}).WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    for (const auto& [version, isFault] : {std::pair("4.1", true), std::pair("5.0", false)}) {
        mDir.Write("b/bundle.json",
            BundleJson(R"(, "tz": "UTC", "settings": {"VersionName": ")" + std::string(version) + "\"}"));
        EXPECT_EQ(Detect({"--as-of", std::to_string(NOW)}).out.find("1. DROPS") != std::string::npos, isFault) << version;
    }
}

TEST_F(AsOfTest, DerivedTablesLackTheRowsLaterThanTheMoment)
{
    mDir.Write("b/bundle.json", BundleJson(R"(, "tz": "UTC")"));
    WriteDropsTableRules(mDir, "b", "select count(*) as n from DROPS_TABLE");
    EXPECT_THAT(Detect({"--as-of", std::to_string(NOW + 3600)}).out, HasSubstr("1. DROPS"));
    const auto before = Detect({"--as-of", std::to_string(NOW + 3599)});
    EXPECT_THAT(before.out, testing::AllOf(HasSubstr("no fault"), Not(HasSubstr("UNDECIDED"))));
    EXPECT_THAT(before.err, IsEmpty());
}

TEST_F(AsOfTest, LogsAreShownAndInspectedAsOfAMoment)
{
    const std::string log = "b" + std::string(LOG_OF_BUNDLE);
    const auto shown = RunArborist({"log", "show", "--seconds", "--as-of", std::to_string(NOW), log}).out;
    EXPECT_THAT(shown, HasSubstr(std::to_string(NOW)));
    EXPECT_THAT(shown, Not(HasSubstr(std::to_string(NOW + 3600))));
    EXPECT_THAT(RunArborist({"log", "inspect", "--json", "--as-of", std::to_string(NOW), log}).out,
        HasSubstr("\"rows\": 2"));
    EXPECT_THAT(RunArborist({"log", "inspect", "--json", "--as-of", "2024-05-20", "--tz", "UTC", log}).out,
        HasSubstr("\"rows\": 3"));
}

// Everything that a run prints, for a bundle called "b" in `folder`.
std::string Explained(const std::string& folder, const std::string& option, std::int64_t moment)
{
    const auto run = RunArborist({"explain", "--json", option, std::to_string(moment), "b"}, {.directory = folder});
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out + run.err;
}

// What a row that is later than the moment may look like.
struct LaterRow {
    const char* name;
    std::string sql;
};
void PrintTo(const LaterRow& row, std::ostream* out) { *out << row.name; }

class LaterRows : public testing::TestWithParam<LaterRow> {
protected:
    TempDir mDir;
};

// Of the laptop, whose rules count rows, weights and days of them, and read derived tables.
TEST_P(LaterRows, AreHiddenAsIfTheLogEndedBeforeThem)
{
    const std::string log = "b" + std::string(LOG_OF_BUNDLE);
    PrepareLaptop("whole/b");
    std::filesystem::remove("whole/b/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
    EventLogBuilder::Run(mDir.Path("whole/" + log), GetParam().sql);
    PrepareLaptop("cut/b");
    std::filesystem::remove("cut/b/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
    for (const std::int64_t moment : {1716123600, 1716123599, 1716050000, 1715940000, 1715000000, 1709366399}) {
        SCOPED_TRACE(moment);
        ASSERT_EQ(RunArborist({"log", "slice", "whole/" + log, "--to", "cut/" + log, "--as-of", std::to_string(moment)})
            .status, 0);
        EXPECT_EQ(Explained("whole", "--as-of", moment), Explained("cut", "--now", moment));
        for (const auto& command : {std::vector<std::string>{"log", "show", "--seconds"},
                 {"log", "inspect", "--json"}}) {
            auto asOf = command;
            asOf.insert(asOf.end(), {"--as-of", std::to_string(moment), log});
            auto whole = command;
            whole.push_back(log);
            EXPECT_EQ(RunArborist(asOf, {.directory = "whole"}).out, RunArborist(whole, {.directory = "cut"}).out);
        }
    }
}

const std::string TO_LATER_ROWS = " WHERE _ID IN (SELECT _ID FROM event_info_flow WHERE occurrence_time > 1716050000)";

INSTANTIATE_TEST_SUITE_P(Table, LaterRows, testing::Values(
    LaterRow{"AsTheyWereLogged", ""},
    LaterRow{"WithoutAVersion", "UPDATE event_info SET version_id = 99" + TO_LATER_ROWS},
    LaterRow{"OfAnotherVersion", "INSERT INTO event_version VALUES (99, '9.9');"
                                 "UPDATE event_info SET version_id = 99" + TO_LATER_ROWS},
    LaterRow{"WithExtraThatIsNoObject", "UPDATE event_info SET extra = '[1]'" + TO_LATER_ROWS},
    LaterRow{"OfAnotherParent", "UPDATE event_info_flow SET event_pid = event_pid + 1000000" + TO_LATER_ROWS}),
    CaseName());

TEST_F(AsOfTest, APackedBundleIsTheDeviceAsItWas)
{
    RunArborist({"repair", "record", "b", "R", "--now", std::to_string(NOW + 7200)});
    for (const char* target : {"p", "p.zip"}) {
        const auto packed = RunArborist({"bundle", "pack", "b", "-o", target, "--as-of", std::to_string(NOW + 3600)});
        EXPECT_THAT(packed.err, HasSubstr("the repair \"R\" was recorded later, at 2024-05-20 14:00:00: it is left out"));
        const auto later = RunArborist({"detect", target});
        EXPECT_THAT(later.out, HasSubstr("1. DROPS"));
        EXPECT_THAT(later.err, IsEmpty());
    }
    RunArborist({"bundle", "pack", "b", "-o", "q", "--as-of", std::to_string(NOW + 3599)});
    EXPECT_THAT(RunArborist({"detect", "q"}).out, HasSubstr("no fault"));
    EXPECT_EQ(RunArborist({"repair", "list", "q"}).out, "");
}

// The laptop's zone turns its clocks back from 03:00 to 02:00 on 2024-10-27.
TEST_F(AsOfTest, AMomentInAnHourThatComesTwiceIsTheFirst)
{
    constexpr std::int64_t FIRST = 1729989000; // 02:30:00
    mDir.Write("b/bundle.json", BundleJson(R"(, "tz": "CET-1CEST,M3.5.0,M10.5.0/3")"));
    const auto detect = [this](std::int64_t last) {
        EventLogBuilder().Rows({{FIRST - 2, 1001, "", ""}, {FIRST - 1, 1001, "", ""}, {last, 1001, "", ""}})
            .WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
        return Detect({"--as-of", "2024-10-27 02:30:00"}).out;
    };
    EXPECT_THAT(detect(FIRST), HasSubstr("1. DROPS"));
    EXPECT_THAT(detect(FIRST + 1), HasSubstr("no fault"));
    EXPECT_THAT(detect(FIRST + 3600), HasSubstr("no fault"));
}

} // namespace
