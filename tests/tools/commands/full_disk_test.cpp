#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

// Commands whose files can grow to a limit only: to them the disk is full.
class FullDiskTest : public testing::Test {
protected:
    // Runs a command of the shell, in which "arborist" stands for ours, while no file may grow beyond `bytes`.
    ProcessResult Run(const std::string& command, int bytes) const
    {
        const ProcessSetup setup{.environment = {{"TMPDIR", mDir.MakeDir("tmp")}}};
        const auto result = RunScript("trap '' XFSZ; ulimit -f " + std::to_string(bytes / 512) + "; arborist() { '"
            ARBORIST_COMMAND "' \"$@\"; }; " + command, setup);
        EXPECT_TRUE(fs::is_empty(mDir.Path("tmp"))) << "temporary files are left";
        return result;
    }

    // A file that packing doesn't make smaller.
    void WriteNoise(const std::string& name, std::size_t bytes) const
    {
        std::string noise;
        for (std::uint32_t number = 1; noise.size() < bytes; number = number * 1664525 + 1013904223) {
            noise += static_cast<char>(number >> 24);
        }
        mDir.Write(name, noise);
    }

    TempDir mDir;
};

TEST_F(FullDiskTest, AnImportedLogIsWholeOrNotThere)
{
    std::string lines;
    for (int number = 0; number < 20'000; ++number) {
        lines += R"({"time": )" + std::to_string(number) + R"(, "event": 7, "extra": ")" + std::string(200, 'x') + "\"}\n";
    }
    mDir.Write("many.jsonl", lines);
    mDir.Write("one.jsonl", lines.substr(0, lines.find('\n') + 1));
    for (const std::string file : {"one.jsonl", "many.jsonl"}) {
        const auto result = Run("arborist log import " + file + " --to new.db", 2048);
        EXPECT_EQ(result.err, "arborist: new.db: disk I/O error\n") << file;
        EXPECT_EQ(result.status, 4);
        EXPECT_FALSE(mDir.Has("new.db"));
    }
}

TEST_F(FullDiskTest, ASliceOfALogIsWholeOrNotThere)
{
    EventLogBuilder().Rows(std::vector<LoggedRow>(1000, {5, 7, "", std::string(50, 'x')})).WriteTo(mDir.Path("log.db"));
    const auto result = Run("arborist log slice log.db --to new.db --last 1", 8192);
    EXPECT_THAT(result.err, HasSubstr("disk I/O error\n"));
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("new.db"));
}

TEST_F(FullDiskTest, AResultsDatabaseIsWholeOrNotThere)
{
    mDir.Write("one.jsonl", LineOf("a").Fault("T", {"A"}).Text());
    const auto result = Run("arborist results import one.jsonl --to r.db", 4096);
    EXPECT_EQ(result.err, "arborist: r.db: disk I/O error\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("r.db"));
}

TEST_F(FullDiskTest, AResultsDatabaseThatIsThereKeepsWhatItHas)
{
    mDir.Write("one.jsonl", LineOf("a").Fault("T", {"A"}).Text());
    std::string lines;
    for (int number = 0; number < 2000; ++number) {
        lines += LineOf("b" + std::to_string(number)).Fault("T", {"A"}).Text();
    }
    mDir.Write("many.jsonl", lines);
    ASSERT_EQ(RunArborist({"results", "import", "one.jsonl", "--to", "r.db"}).status, 0);
    const auto before = mDir.Read("r.db");
    EXPECT_NE(Run("arborist results import many.jsonl --to r.db", static_cast<int>(before.size())).status, 0);
    EXPECT_EQ(mDir.Read("r.db"), before);
    EXPECT_EQ(RunArborist({"results", "diff", "r.db", "one.jsonl", "--exit-code"}).status, 0);
}

struct OutputCase { const char* name; const char* command; const char* message; int status; };
void PrintTo(const OutputCase& output, std::ostream* out) { *out << output.name; }
class OutputOnAFullDisk : public FullDiskTest, public testing::WithParamInterface<OutputCase> {};

TEST_P(OutputOnAFullDisk, IsTold)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("one.jsonl", LineOf("a").Fault("T", {"A"}).Text());
    ASSERT_EQ(RunArborist({"results", "import", "one.jsonl", "--to", "r.db"}).status, 0);
    const auto result = Run(GetParam().command, 512);
    EXPECT_THAT(result.err, HasSubstr(GetParam().message));
    EXPECT_EQ(result.status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Table, OutputOnAFullDisk, testing::Values(
    OutputCase{"OfReport", "arborist report b -o page.html", "arborist: page.html: can't be written: File too large\n", 5},
    OutputCase{"OfGraph", "arborist graph b -o tree.dot", "arborist: tree.dot: can't be written: File too large\n", 5},
    OutputCase{"OfResultsReport", "arborist results report r.db --html page.html",
        "arborist: page.html: can't be written: File too large\n", 5},
    OutputCase{"OfARecordedCase", "arborist test --record b --output one.test.json",
        "bundle.json: can't be written [not_recorded]\n", 4},
    OutputCase{"OfRulesNew", "arborist rules new made", "arborist: made/", 2},
    OutputCase{"OfManPages", "mkdir pages; arborist help --man-to pages", "arborist: pages/arborist.1: can't be written\n", 2},
    OutputCase{"OfStandardOutput", "arborist rules schema --relax-ng rules > out",
        "arborist: standard output could not be written\n", 5},
    OutputCase{"OfTheLibrarysLog", "arborist detect --log-level none --log-file log b > /dev/null",
        "arborist: log: can't be written: File too large\n", 5}),
    CaseName());

TEST_F(FullDiskTest, ABaselineKeepsWhatItHas)
{
    WriteHotBundle(mDir, "b");
    const std::string known = "# " + std::string(1000, 'x') + "\n";
    mDir.Write("known.txt", known);
    const auto result = Run("arborist lint b/rules --write-baseline known.txt", 512);
    EXPECT_EQ(result.err, "arborist: known.txt: can't be written\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(mDir.Read("known.txt"), known);
}

TEST_F(FullDiskTest, AZipOfABundleIsWholeOrNotThere)
{
    WriteHotBundle(mDir, "b");
    WriteNoise("b/temperature", 8000);
    const auto result = Run("arborist bundle pack b -o packed.zip", 8192);
    EXPECT_EQ(result.err, "arborist: b: packed.zip: can't be written [not_packed]\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("packed.zip"));
}

TEST_F(FullDiskTest, AFolderOfABundleIsWholeOrNotThere)
{
    WriteHotBundle(mDir, "b");
    WriteNoise("b/temperature", 8000);
    const auto result = Run("arborist bundle pack b -o packed", 4096);
    EXPECT_THAT(result.err, EndsWith("/b/temperature: can't be captured: File too large [not_packed]\n"));
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("packed"));
}

TEST_F(FullDiskTest, TheDescriptionOfABundleIsToldWhereItFitsNotOnTheDisk)
{
    std::string answers;
    for (int number = 0; number < 1000; ++number) {
        answers += (number == 0 ? "\"" : ", \"") + std::to_string(number) + "\": true";
    }
    WriteHotBundle(mDir, "b", BundleJson(", \"codeAnswers\": {" + answers + "}"));
    const auto result = Run("arborist bundle pack b -o packed", 4096);
    EXPECT_EQ(result.err, "arborist: b: bundle.json: can't be written [not_packed]\n");
    EXPECT_FALSE(mDir.Has("packed"));
}

TEST_F(FullDiskTest, AZipThatCannotBeUnpackedIsToldAndWorthAnotherTry)
{
    WriteHotBundle(mDir, "b");
    WriteNoise("b/temperature", 8000);
    ASSERT_EQ(RunArborist({"bundle", "pack", "b", "-o", "b.zip"}).status, 0);
    const auto result = Run("arborist detect b.zip", 4096);
    EXPECT_EQ(result.err, "arborist: b.zip: \"temperature\" can't be unpacked: File too large [no_scratch]\n");
    EXPECT_EQ(result.status, 5);
}

TEST_F(FullDiskTest, ALogThatCannotBeCopiedIsTold)
{
    WriteDropsBundle(mDir, "b");
    const std::string log = mDir.Path("b") + LOG_OF_BUNDLE;
    EventLogBuilder().Row({1716206400, 1001, "", ""}).WriteTo(log);
    EventLogBuilder::RunIntoWal(log, "DELETE FROM event_info");
    const auto result = Run("arborist detect b", 4096);
    EXPECT_THAT(result.err, AllOf(HasSubstr("/log.db: can't be copied: "), EndsWith(" [not_copied]\n")));
    EXPECT_EQ(result.status, 4);
}

TEST_F(FullDiskTest, ARepairThatIsNotRecordedIsTold)
{
    WriteDropsBundle(mDir, "b");
    const auto result = Run("arborist repair record b R --log-level none", 2048);
    EXPECT_THAT(result.err, AllOf(HasSubstr("/repair_record.db: "), EndsWith(" [bad_repair_records]\n")));
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R"}).status, 0);
}

TEST_F(FullDiskTest, AComparisonWithoutRoomForItsResultsIsBrokenOff)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("list", "b\nb/../b\nb/./b\n");
    const auto result = Run("arborist compare --rules b/rules --rules b/rules --batch list", 512);
    EXPECT_THAT(result.err, HasSubstr("arborist: the results can't be written to the temporary folder\n"));
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.out, IsEmpty());
}

} // namespace
