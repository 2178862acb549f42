#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct WrongUseCase { const char* name; std::vector<std::string> arguments; const char* message; };
void PrintTo(const WrongUseCase& useCase, std::ostream* out) { *out << useCase.name; }
class WrongUse : public testing::TestWithParam<WrongUseCase> {};

TEST_P(WrongUse, IsToldAndAnswers2)
{
    const auto result = RunArborist(GetParam().arguments);
    EXPECT_THAT(result.err, StartsWith("arborist: " + std::string(GetParam().message)));
    EXPECT_THAT(result.err, HasSubstr("--help"));
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 2);
}

INSTANTIATE_TEST_SUITE_P(Table, WrongUse, testing::Values(
    WrongUseCase{"NoCommand", {}, "A subcommand is required"},
    WrongUseCase{"MistypedCommand", {"detct", "b"}, "no such command: detct; did you mean \"detect\"?"},
    WrongUseCase{"MistypedSecondWord", {"log", "improt"}, "no such command: improt; did you mean \"import\"?"},
    WrongUseCase{"UnknownCommand", {"xyzzy"}, "no such command: xyzzy\n"},
    WrongUseCase{"NoSecondWord", {"log"}, "A subcommand is required"},
    WrongUseCase{"UnknownOption", {"detect", "b", "--frobnicate"}, "no such option: --frobnicate\n"},
    WrongUseCase{"MistypedOption", {"detect", "b", "--jsn"}, "no such option: --jsn; did you mean \"--json\"?"},
    WrongUseCase{"MistypedOptionWithValue", {"log", "show", "l", "--second=1"}, "no such option: --second; did you mean \"--seconds\"?"},
    WrongUseCase{"MistypedOptionOfAll", {"--versio"}, "no such option: --versio; did you mean \"--version\"?"},
    WrongUseCase{"NoBundle", {"detect"}, "BUNDLE is required"},
    WrongUseCase{"BatchAndBundle", {"detect", "b", "--batch", "list"}, "--batch excludes BUNDLE"},
    WrongUseCase{"JobsWithoutBatch", {"detect", "b", "--jobs", "2"}, "--jobs requires --batch"},
    WrongUseCase{"NoJobs", {"detect", "--batch", "list", "--jobs", "0"}, "--jobs: "},
    WrongUseCase{"TimeoutThatIsNone", {"detect", "--batch", "list", "--timeout", "nan"},
        "--timeout: must be a number of seconds from 0 to 86400: nan"},
    WrongUseCase{"TooLongTimeout", {"bundle", "pack", "b", "-o", "p", "--code-timeout", "inf"},
        "--code-timeout: must be a number of seconds from 0.001 to 86400: inf"},
    WrongUseCase{"NoRules", {"sweep", "b", "--rules", ""}, "--rules: must not be empty"},
    WrongUseCase{"NoRulesBefore", {"compare", "--rules", "", "--rules", "r", "--batch", "list"}, "--rules: must not be empty"},
    WrongUseCase{"NoLogFile", {"detect", "b", "--log-file", ""}, "--log-file: must not be empty"},
    WrongUseCase{"NoOutput", {"detect", "--batch", "list", "--output", ""}, "--output: must not be empty"},
    WrongUseCase{"NoEarlierLines", {"detect", "--batch", "list", "--resume", ""}, "--resume: must not be empty"},
    WrongUseCase{"NoSummary", {"detect", "--batch", "list", "--summary", ""}, "--summary: must not be empty"},
    WrongUseCase{"NoDatabase", {"results", "import", "lines", "--to", ""}, "--to: must not be empty"},
    WrongUseCase{"NoLines", {"results", "import", "", "--to", "r.db"}, "FILE: must not be empty"},
    WrongUseCase{"NothingAfter", {"results", "diff", "lines", ""}, "NEW: must not be empty"},
    WrongUseCase{"NoDatabaseToReport", {"results", "report", "", "--json"}, "R.DB: must not be empty"},
    WrongUseCase{"NegativeTableMoments", {"sweep", "b", "--table-moments", "-1"},
        "--table-moments: Value -1 not in range 0 to 10000000"},
    WrongUseCase{"NoTarget", {"bundle", "pack", "b", "-o", ""}, "--output: must not be empty"},
    WrongUseCase{"BadNow", {"detect", "b", "--now", "noon"},
        "--now: is neither a local time \"YYYY-MM-DD HH:MM:SS\" that exists nor seconds since the epoch: noon"},
    WrongUseCase{"NoSuchDay", {"detect", "b", "--as-of", "2024-02-30 00:00:00"},
        "--as-of: is neither a local time \"YYYY-MM-DD HH:MM:SS\" that exists nor seconds since the epoch: "
        "2024-02-30 00:00:00"},
    WrongUseCase{"NoSuchDayOfALog", {"log", "inspect", "b", "--as-of", "2024-02-30"},
        "--as-of: is neither a day \"YYYY-MM-DD\" or local time \"YYYY-MM-DD HH:MM:SS\" that exists nor seconds since the "
        "epoch: 2024-02-30"},
    WrongUseCase{"BadZone", {"detect", "b", "--tz", "Mars"}, "--tz: names no time zone that this machine knows: Mars"},
    WrongUseCase{"BadLogLevel", {"detect", "b", "--log-level", "loud"},
        "--log-level: loud not in {trace,debug,info,warn,error,fatal,none}"}),
    CaseName());

} // namespace
