// What the command does on Windows alone; see docs/windows.md.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class WindowsTest : public testing::Test {
protected:
    TempDir mDir;
};

TEST_F(WindowsTest, BundlesOfABatchRunOneAfterTheOther)
{
    WriteHotBundle(mDir, "a");
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--batch", "-"}, {"a\nb\n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\"bundle\": \"a\", \"ok\": true"));
    EXPECT_THAT(result.out, HasSubstr("\"bundle\": \"b\", \"ok\": true"));
}

TEST_F(WindowsTest, WhatNeedsWorkerProcessesIsRefused)
{
    WriteHotBundle(mDir, "a");
    for (const std::string option : {"--jobs", "--timeout"}) {
        const auto result = RunArborist({"detect", "--batch", "-", option, "2"}, {"a\n"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr(option + ": must be "));
        EXPECT_THAT(result.out, IsEmpty());
    }
}

TEST_F(WindowsTest, NamesHaveAllLetters)
{
    const std::string name = "gr\xC3\xBC\xC3\x9F\xE6\x97\xA5\xF0\x9F\x98\x80"; // of two, three and four bytes
    WriteHotBundle(mDir, name);
    const auto result = RunArborist({"detect", name});
    EXPECT_THAT(result.out, HasSubstr(name + "\n"));
    EXPECT_THAT(result.out, HasSubstr("1. HOT"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(WindowsTest, ScriptIsNoCodeRunner)
{
    WriteCodeBundle(mDir, "b", {"info"});
    mDir.Write("runner.cmd", "exit 0");
    const auto result = RunArborist({"detect", "--code-runner", "./runner.cmd", "b"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("is no .exe, and Windows starts no scripts"));
}

TEST_F(WindowsTest, ProgramAnswersACodeRule)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto result = RunArborist({"detect", "--code-runner", "hostname", "b"}); // of the system, by PATH
    EXPECT_THAT(result.out, HasSubstr("1. C1"));
    EXPECT_EQ(result.status, 0);
}

class NamesOfSystem : public WindowsTest, public testing::WithParamInterface<const char*> {};

TEST_P(NamesOfSystem, InAnArchiveAreRefused)
{
    WriteZip(mDir.Path("z.zip"), {{"bundle.json", BundleJson()}, {GetParam(), "x"}});
    const auto result = RunArborist({"detect", "z.zip"});
    EXPECT_THAT(result.err, HasSubstr("the name of an entry can't be used"));
    EXPECT_EQ(result.status, 4);
}

INSTANTIATE_TEST_SUITE_P(Table, NamesOfSystem,
    testing::Values("c:/x", "c:x", "bundle.json:part", "NUL", "rules/nul.txt", "COM1", "a/lpt9.xml"),
    [](const auto& info) { return "Name" + std::to_string(info.index); });

TEST_F(WindowsTest, ZoneOfADatabaseIsNotKnown)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--tz", "Europe/Berlin", "b"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("names no time zone that this machine knows: Europe/Berlin"));
}

} // namespace
