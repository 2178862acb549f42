#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::IsEmpty;

struct LogFileCase { const char* name; std::vector<std::string> arguments; };
void PrintTo(const LogFileCase& logFile, std::ostream* out) { *out << logFile.name; }

class LogFile : public testing::TestWithParam<LogFileCase> {
protected:
    TempDir mDir;
};

TEST_P(LogFile, ThatCannotBeWrittenIsWrongUseBeforeAnythingElse)
{
    WriteHotBundle(mDir, "b");
    std::vector<std::string> arguments = GetParam().arguments;
    arguments.insert(arguments.end(), {"--log-file", "no/such/folder/log"});
    const auto result = RunArborist(arguments);
    EXPECT_EQ(result.err, "arborist: no/such/folder/log: can't be written: No such file or directory\n");
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 2);
    EXPECT_FALSE(mDir.Has("made"));
}

INSTANTIATE_TEST_SUITE_P(Table, LogFile, testing::Values(
    LogFileCase{"Explain", {"explain", "b"}},
    LogFileCase{"Report", {"report", "b", "-o", "made"}},
    LogFileCase{"Graph", {"graph", "b"}},
    LogFileCase{"Query", {"query", "b", "C1"}},
    LogFileCase{"RepairList", {"repair", "list", "b"}},
    LogFileCase{"RepairRecord", {"repair", "record", "b", "R1"}},
    LogFileCase{"BundlePack", {"bundle", "pack", "b", "-o", "made"}},
    LogFileCase{"BundleInfo", {"bundle", "info", "b"}},
    LogFileCase{"BundleVerify", {"bundle", "verify", "b"}}),
    CaseName());

} // namespace
