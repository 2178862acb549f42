#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CodeRunnerTest : public testing::Test {
protected:
    std::string Script(const std::string& name, const std::string& body) const
    {
        const auto path = mDir.Write(name, "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    TempDir mDir;
};

TEST_F(CodeRunnerTest, GetsTheIdsOfTheEventAndTheTextOfTheRule)
{
    WriteCodeBundle(mDir, "b", {"a \"b\""});
    Script("runner", "cat > ../question; exit 0");
    const auto result = RunArborist({"detect", "--code-runner", "./runner", "b"});
    EXPECT_THAT(result.out, HasSubstr("1. C1"));
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(mDir.Read("question"), R"({"faultDescriptionIds": ["D_C1"], "suggestionIds": ["S_C1"], )"
                                     R"("repairIds": ["R_C1"], "userDefinedInfo": "a \"b\""})" "\n");
}

struct RunnerCase { const char* name; const char* body; bool isFault; const char* trouble; };
void PrintTo(const RunnerCase& runnerCase, std::ostream* out) { *out << runnerCase.name; }
class CodeRunnerEnd : public CodeRunnerTest, public testing::WithParamInterface<RunnerCase> {};

TEST_P(CodeRunnerEnd, DecidesTheRule)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto runner = Script("runner", GetParam().body);
    const auto result = RunArborist({"detect", "--code-timeout", "0.3", "--code-runner", runner, "b"});
    EXPECT_THAT(result.out, HasSubstr(GetParam().isFault ? "FAULT" : "no fault"));
    EXPECT_EQ(result.err, *GetParam().trouble == '\0' ? "" : "arborist: b: warning: " + runner
        + ": asked about \"info\": " + GetParam().trouble + ": taken as not present\n");
    EXPECT_EQ(result.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Table, CodeRunnerEnd, testing::Values(
    RunnerCase{"ZeroIsPresent", "exit 0", true, ""},
    RunnerCase{"OneIsNotPresent", "exit 1", false, ""},
    RunnerCase{"TwoIsNoAnswer", "exit 2", false, "exit status 2, neither 0 (present) nor 1 (not present)"},
    RunnerCase{"KilledIsNoAnswer", "kill -9 $$", false, "was killed by the signal Killed"},
    RunnerCase{"TooLongIsKilled", "exec sleep 60", false, "ran longer than 0.3 s and was killed"}),
    CaseName());

TEST_F(CodeRunnerTest, WhatItPrintsGoesToStandardError)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto runner = Script("runner", "echo chatter; exit 0");
    const auto result = RunArborist({"detect", "--json", "--code-runner", runner, "b"});
    EXPECT_THAT(result.out, Not(HasSubstr("chatter")));
    EXPECT_EQ(result.err, "chatter\n");
}

TEST_F(CodeRunnerTest, OneThatCannotBeStartedIsWrongUseBeforeTheFirstBundle)
{
    WriteCodeBundle(mDir, "b", {"info"});
    mDir.Write("notes.txt", "no program");
    mDir.MakeDir("folder");
    for (const auto& [program, reason] : {std::pair("no-such-runner", "No such file or directory"),
             std::pair("./notes.txt", "Permission denied"), std::pair("./folder", "is no file")}) {
        const auto result = RunArborist({"detect", "--json", "--code-runner", program, "b"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_THAT(result.err, HasSubstr(program + std::string(": can't be started: ") + reason));
    }
}

TEST_F(CodeRunnerTest, OneWhoseInterpreterIsMissingIsWrongUse)
{
    WriteCodeBundle(mDir, "b", {"info"});
    std::filesystem::permissions(mDir.Write("runner", "#! /no/such/shell -e\n"), std::filesystem::perms::owner_all);
    const auto result = RunArborist({"detect", "--json", "--code-runner", "./runner", "b"});
    EXPECT_THAT(result.err, HasSubstr("its interpreter /no/such/shell: No such file or directory"));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 2);
}

TEST_F(CodeRunnerTest, OneThatTheSystemTakesForNoProgramIsAWarning)
{
    WriteCodeBundle(mDir, "b", {"info"});
    std::filesystem::permissions(mDir.Write("runner", "neither script nor program\n"), std::filesystem::perms::owner_all);
    const auto result = RunArborist({"detect", "--json", "--code-runner", "./runner", "b"});
    EXPECT_THAT(result.out, AllOf(HasSubstr(R"("ok": true, "warnings": [{"code": "code_runner", "message": ")"),
        HasSubstr("can't be started: Exec format error")));
    EXPECT_EQ(result.status, 0);
}

TEST_F(CodeRunnerTest, ALongQuestionThatNobodyReadsBlocksNothing)
{
    WriteCodeBundle(mDir, "b", {std::string(300000, 'x')});
    const auto runner = Script("runner", "exit 0");
    EXPECT_THAT(RunArborist({"detect", "--code-runner", runner, "b"}).out, HasSubstr("FAULT"));
}

TEST_F(CodeRunnerTest, ItsWholeProcessGroupIsKilled)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto runner = Script("runner", "sleep 600 > ../pipe & wait");
    // The reader of the pipe ends when no process has its other side open any more.
    const auto reader = RunScript("mkfifo pipe; '" ARBORIST_COMMAND "' detect --code-timeout 0.5 "
        "--code-runner '" + runner + "' b >/dev/null 2>&1 & timeout 60 cat pipe");
    EXPECT_EQ(reader.status, 0);
}

TEST_F(CodeRunnerTest, RecordedAnswersComeFirst)
{
    WriteCodeBundle(mDir, "b", {"yes", "no", "asked"}, BundleJson(R"(, "codeAnswers": {"yes": true, "no": false})"));
    const auto runner = Script("runner", "cat >> ../questions; exit 0");
    const auto result = RunArborist({"detect", "--code-runner", runner, "b"});
    EXPECT_THAT(result.out, AllOf(HasSubstr("1. C1\n"), HasSubstr("2. C3\n"), Not(HasSubstr("C2"))));
    EXPECT_THAT(mDir.Read("questions"), AllOf(HasSubstr("asked"), Not(HasSubstr("yes")), EndsWith("}\n")));
}

TEST_F(CodeRunnerTest, WithoutRunnerARuleWithoutARecordedAnswerIsAWarning)
{
    WriteCodeBundle(mDir, "recorded", {"yes", "asked"}, BundleJson(R"(, "codeAnswers": {"yes": true})"));
    WriteCodeBundle(mDir, "bare", {"asked"});
    EXPECT_THAT(RunArborist({"detect", "--json", "recorded"}).out, HasSubstr(R"("warnings": [{"code": "no_code_runner", )"
        R"("message": "the code rule \"ruleC2\" has no recorded answer, and no --code-runner was given: )"));
    EXPECT_THAT(RunArborist({"detect", "--json", "bare"}).out, HasSubstr(R"("warnings": [{"code": "no_code_runner", )"
        R"("message": "the code rule \"ruleC1\" has no recorded answer, and no --code-runner was given: )"));
}

TEST_F(CodeRunnerTest, ABundleCannotPutItsOwnProgramInPlace)
{
    WriteCodeBundle(mDir, "b", {"info"});
    Script("b/runner", "exit 0");
    Script("runner", "exit 1");
    EXPECT_THAT(RunArborist({"detect", "--code-runner", "./runner", "b"}).out, HasSubstr("no fault"));
    EXPECT_THAT(RunArborist({"detect", "--code-runner", "runner", "b"}, {.environment = {{"PATH", "."}}}).out,
        HasSubstr("no fault"));
}

TEST_F(CodeRunnerTest, ATimeoutThatIsNoneIsWrongUse)
{
    for (const char* timeout : {"0", "-1", "soon"}) {
        EXPECT_EQ(RunArborist({"detect", "--code-timeout", timeout, "b"}).status, 2);
    }
}

} // namespace
