#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

// Files that can be opened and not read, as on a broken disk.
class UnreadableFile : public testing::Test {
protected:
    UnreadableFile() { WriteHotBundle(mDir, "b"); }

    ProcessResult Run(const std::vector<std::string>& arguments, const std::string& file) const
    {
        return RunArborist(arguments, {.environment = {{"LD_PRELOAD", FAILING_CALLS}, {"FAILING_READ", "/" + file},
            {"ASAN_OPTIONS", "verify_asan_link_order=0"}}});
    }

    TempDir mDir;
};

struct UnreadableCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* file;
    const char* message;
    int status;
};
void PrintTo(const UnreadableCase& unreadable, std::ostream* out) { *out << unreadable.name; }
class UnreadableInput : public UnreadableFile, public testing::WithParamInterface<UnreadableCase> {};

TEST_P(UnreadableInput, IsToldAndNotTakenForAShorterOne)
{
    mDir.Write("list", "b\n");
    mDir.Write("lines.jsonl", LineOf("b").Fault("T", {"HOT"}).Text());
    mDir.Write("events.jsonl", "{\"time\": 5, \"event\": 7}\n");
    mDir.Write("one.test.json", "{}");
    mDir.Write("file.json", "{}");
    mDir.Write("key", std::string(64, 'k'));
    mDir.Write("redaction.json", R"({"key": "key", "bundle": ["deviceId"]})");
    mDir.Write("known.txt", "# known\n");
    const auto result = Run(GetParam().arguments, GetParam().file);
    EXPECT_THAT(result.err, HasSubstr("arborist: " + std::string(GetParam().message)));
    EXPECT_EQ(result.status, GetParam().status);
    EXPECT_FALSE(mDir.Has("made"));
}

INSTANTIATE_TEST_SUITE_P(Table, UnreadableInput, testing::Values(
    UnreadableCase{"Bundle", {"detect", "b"}, "b/bundle.json", "b: b/bundle.json: can't be read [no_bundle_json]\n", 4},
    UnreadableCase{"ListOfABatch", {"detect", "--batch", "list"}, "list", "list: can't be read to its end\n", 2},
    UnreadableCase{"EarlierLines", {"detect", "--batch", "list", "--resume", "lines.jsonl"}, "lines.jsonl",
        "lines.jsonl: can't be read to its end: Input/output error\n", 2},
    UnreadableCase{"Events", {"log", "import", "events.jsonl", "--to", "made"}, "events.jsonl",
        "events.jsonl: can't be read: Input/output error\n", 4},
    UnreadableCase{"Results", {"results", "import", "lines.jsonl", "--to", "made"}, "lines.jsonl",
        "lines.jsonl: can't be read: Input/output error\n", 4},
    UnreadableCase{"ResultsToCompare", {"results", "diff", "lines.jsonl", "events.jsonl"}, "lines.jsonl",
        "lines.jsonl: can't be read: Input/output error\n", 4},
    UnreadableCase{"Case", {"test", "one.test.json"}, "one.test.json", "one.test.json: can't be read\n", 4},
    UnreadableCase{"TreeFile", {"rules", "list", "b/rules"}, "FaultTrees.xml", "b/rules/FaultTrees.xml: it can't be read\n", 3},
    UnreadableCase{"RuleFile", {"rules", "stats", "b/rules"}, "FaultTreeRules.xml",
        "b/rules/FaultTreeRules.xml: it can't be read\n", 3},
    UnreadableCase{"ConfigurationOfLint", {"lint", "b/rules", "--config", "file.json"}, "file.json",
        "file.json: it can't be read\n", 2},
    UnreadableCase{"DevicesOfLint", {"lint", "b/rules", "--device", "file.json"}, "file.json", "file.json: it can't be read\n", 2},
    UnreadableCase{"BaselineOfLint", {"lint", "b/rules", "--baseline", "known.txt"}, "known.txt",
        "known.txt: it can't be read\n", 2},
    UnreadableCase{"Redaction", {"bundle", "pack", "b", "-o", "made", "--redact", "redaction.json"}, "redaction.json",
        "redaction.json: it can't be read\n", 2},
    UnreadableCase{"KeyForDevices", {"detect", "b", "--device-key", "key"}, "key", "--device-key: key: the key can't be read\n", 2},
    UnreadableCase{"OpenPsaModel", {"rules", "import", "file.json"}, "file.json", "file.json: it can't be read\n", 4}),
    CaseName());

TEST_F(UnreadableFile, OfANodeIsLeftOutOfACaptureWithAWarning)
{
    const auto result = Run({"bundle", "pack", "b", "-o", "packed"}, "b/temperature");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, EndsWith("/b/temperature: can't be read, and is left out\n"));
    EXPECT_THAT(result.out, EndsWith("packed: 3 files, " + std::to_string(mDir.Read("packed/bundle.json").size()
        + mDir.Read("packed/rules/FaultTrees.xml").size() + mDir.Read("packed/rules/FaultTreeRules.xml").size()) + " bytes\n"));
    EXPECT_FALSE(mDir.Has("packed/temperature"));
}

TEST_F(UnreadableFile, OfACaptureThatBecomesAZipIsNotPacked)
{
    const auto result = Run({"bundle", "pack", "b", "-o", "packed.zip"}, "bundle/temperature");
    EXPECT_EQ(result.err, "arborist: b: packed.zip: can't be written [not_packed]\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("packed.zip"));
}

TEST_F(UnreadableFile, OfANodeIsNoTroubleOfARedaction)
{
    mDir.Write("redaction.json", R"({"key": "0123456789abcdef", "nodes": ["temperature"], "log": [{"members": ["A"]}]})");
    const auto result = Run({"bundle", "pack", "b", "-o", "packed", "--redact", "redaction.json"}, "b/temperature");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("not there  node file: temperature\n"), HasSubstr("not there  event log\n")));
}

TEST_F(UnreadableFile, OfACaptureThatIsRedactedIsNotPacked)
{
    mDir.Write("redaction.json", R"({"key": "0123456789abcdef", "nodes": ["temperature"]})");
    const auto result = Run({"bundle", "pack", "b", "-o", "packed", "--redact", "redaction.json"}, "bundle/temperature");
    EXPECT_EQ(result.err, "arborist: b: temperature: can't be redacted [not_packed]\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_FALSE(mDir.Has("packed"));
}

TEST_F(UnreadableFile, FoldersThatCannotBeReadAreLeftOutOfACaptureWithAWarning)
{
    PrepareLaptop("laptop");
    const auto result = RunArborist({"bundle", "pack", "laptop", "-o", "packed"}, {.environment = {{"LD_PRELOAD", FAILING_CALLS},
        {"FAILING_FOLDER", "/data/panel"}, {"ASAN_OPTIONS", "verify_asan_link_order=0"}}});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("/device/data/panel: can't be read to its end, and the rest is left out\n"));
    EXPECT_FALSE(mDir.Has("packed/device/data/panel/panel_a.db"));
}

TEST_F(UnreadableFile, OfANodeIsAnOpenCheck)
{
    const auto result = Run({"detect", "b"}, "b/temperature");
    EXPECT_THAT(result.out, AllOf(HasSubstr("undecided"), Not(HasSubstr("1. HOT"))));
}

TEST_F(UnreadableFile, OfAFolderIsNoBaseline)
{
    mDir.MakeDir("folder");
    const auto result = RunArborist({"lint", "b/rules", "--baseline", "folder"});
    EXPECT_EQ(result.err, "arborist: folder: it can't be read\n");
    EXPECT_EQ(result.status, 2);
}

} // namespace
