#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

namespace fs = std::filesystem;

/// A command that only reads; "BUNDLE" and "LOG" are replaced by the paths of the bundle and of its event log.
struct ReadingCase {
    const char* name;
    std::vector<std::string> command;
};
void PrintTo(const ReadingCase& reading, std::ostream* out) { *out << reading.name; }

/// A bundle of all families of rules in "in", beside an empty "out" and a folder for temporary files.
class ReadingCommand : public testing::TestWithParam<ReadingCase> {
protected:
    void SetUp() override
    {
        PrepareLaptop("in/b");
        mDir.MakeDir("out");
        mDir.MakeDir("tmp");
    }

    void TearDown() override { SetWritable(true); }

    // Makes "in" read-only for everybody, and the folders beside it writable for everybody.
    void SetWritable(bool isWritable) const
    {
        const auto option = isWritable ? fs::perm_options::add : fs::perm_options::remove;
        constexpr auto WRITE = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
        fs::permissions("in", isWritable ? fs::perms::owner_write : WRITE, option);
        for (const auto& entry : fs::recursive_directory_iterator("in")) {
            fs::permissions(entry.path(), isWritable ? fs::perms::owner_write : WRITE, option);
        }
    }

    // The command prefix that runs a command as "nobody", to whom permissions apply; empty if that is not possible.
    std::vector<std::string> AsNobody() const
    {
        const std::vector<std::string> words = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
        for (const char* folder : {"", "out", "tmp"}) {
            fs::permissions(mDir.Path(folder), fs::perms::all);
        }
        std::vector<std::string> trial = words;
        trial.insert(trial.end(), {ARBORIST_COMMAND, "--version"});
        return geteuid() == 0 && RunProcess(trial).status == 0 ? words : std::vector<std::string>{};
    }

    ProcessResult RunOn(const std::string& bundle, std::vector<std::string> before = {}) const
    {
        before.emplace_back(ARBORIST_COMMAND);
        for (const std::string& word : GetParam().command) {
            before.push_back(word == "BUNDLE" ? bundle : word == "LOG" ? bundle + LOG_OF_BUNDLE : word);
        }
        return RunProcess(before, {.input = bundle + "\n", .environment = {{"TMPDIR", mDir.Path("tmp")}}});
    }

    // Returns the output of the command.
    std::string ExpectThatAllStays(const std::string& bundle, const std::vector<std::string>& before = {})
    {
        const auto state = StateOf("in");
        const auto result = RunOn(bundle, before);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(StateOf("in"), state);
        EXPECT_TRUE(fs::is_empty("tmp"));
        fs::remove_all("out/made");
        return WithoutTimes(result.out);
    }

    TempDir mDir;
};

TEST_P(ReadingCommand, LeavesItsInputsAsTheyAre)
{
    const std::string plain = ExpectThatAllStays("in/b");
    EventLogBuilder::RunIntoWal("in/b" + std::string(LOG_OF_BUNDLE), "UPDATE event_info SET extra = extra");
    ASSERT_TRUE(mDir.Has("in/b" + std::string(LOG_OF_BUNDLE) + "-wal"));
    EXPECT_EQ(ExpectThatAllStays("in/b"), plain);
    const auto nobody = AsNobody();
    SetWritable(false);
    EXPECT_EQ(ExpectThatAllStays("in/b", nobody), plain);
    SetWritable(true);
    if (GetParam().command[0] != "log") {
        ASSERT_EQ(RunArborist({"bundle", "pack", "in/b", "-o", "in/b.zip"}).status, 0);
        fs::remove_all("in/b");
        ExpectThatAllStays("in/b.zip", nobody);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, ReadingCommand, testing::Values(
    ReadingCase{"Detect", {"detect", "--json", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"DetectExplain", {"detect", "--explain", "--tree", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"DetectBatch", {"detect", "--batch", "-", "--log-level", "none"}},
    ReadingCase{"Explain", {"explain", "--json", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"Report", {"report", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"Graph", {"graph", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"Query", {"query", "--log-level", "none", "BUNDLE", "SPEAKER_TEST"}},
    ReadingCase{"RepairList", {"repair", "list", "BUNDLE"}},
    ReadingCase{"BundleInfo", {"bundle", "info", "--json", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"BundleVerify", {"bundle", "verify", "--log-level", "none", "BUNDLE"}},
    ReadingCase{"BundlePack", {"bundle", "pack", "--window", "--log-level", "none", "BUNDLE", "-o", "out/made"}},
    ReadingCase{"LogShow", {"log", "show", "LOG"}},
    ReadingCase{"LogInspect", {"log", "inspect", "--json", "LOG"}},
    ReadingCase{"LogSlice", {"log", "slice", "LOG", "--last", "3", "--to", "out/made"}}),
    CaseName());

} // namespace
