#include "diagnosis/detection/code_program.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

using diagnosis::FindProgram;
using diagnosis::ProgramProblem;

class CodeProgramTest : public testing::Test {
protected:
    CodeProgramTest() : mBefore(std::getenv("PATH")) {}
    ~CodeProgramTest() override { setenv("PATH", mBefore.c_str(), 1); }

    void Program(const std::string& name, const std::string& text) const
    {
        std::filesystem::permissions(mDir.Write(name, text), std::filesystem::perms::owner_all);
    }

    TempDir mDir;
    std::string mBefore;
};

TEST_F(CodeProgramTest, ANameIsLookedUpInPathAndThenInTheWorkingDirectory)
{
    Program("one/runner", "#!/bin/sh\n");
    Program("runner", "#!/bin/sh\n");
    mDir.MakeDir("two/runner");
    setenv("PATH", "two:none:one", 1);
    EXPECT_EQ(FindProgram("runner"), mDir.Path("one/runner")) << "a folder is no program";
    setenv("PATH", ":one", 1);
    EXPECT_EQ(std::filesystem::path(FindProgram("runner")).lexically_normal(), mDir.Path("runner")) << "an empty entry is this folder";
    unsetenv("PATH");
    EXPECT_EQ(FindProgram("runner"), mDir.Path("runner"));
    EXPECT_EQ(FindProgram("one/runner"), mDir.Path("one/runner"));
}

TEST_F(CodeProgramTest, WhatCanBeStartedHasNoProblem)
{
    for (const char* text : {"", "#", "#x", "#!", "#!\n", "#!/bin/sh -e\n", "text"}) {
        Program("runner", text);
        EXPECT_EQ(ProgramProblem("runner"), std::nullopt) << text;
    }
    Program("runner", "#!/none\n");
    EXPECT_EQ(ProgramProblem("runner"), "its interpreter /none: No such file or directory");
    mDir.MakeDir("folder");
    EXPECT_EQ(ProgramProblem("folder"), "is no file");
    EXPECT_EQ(ProgramProblem("none"), "No such file or directory");
}

} // namespace
