#include "diagnosis/drawing/graphviz.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

class GraphvizTest : public testing::Test {
protected:
    GraphvizTest() : mBefore(std::getenv("PATH")) { setenv("PATH", (mDir.Path("bin") + ":/bin:/usr/bin").c_str(), 1); }
    ~GraphvizTest() override { setenv("PATH", mBefore.c_str(), 1); }

    // What comes of a program "dot" with this text: the picture, or "code: message".
    std::string Drawn(const std::string& dot) const
    {
        std::filesystem::permissions(mDir.Write("bin/dot", dot), std::filesystem::perms::owner_all);
        std::string svg;
        const auto failure = diagnosis::DrawWithGraphviz("digraph {}", svg);
        return failure ? CodeWord(failure->code) + (": " + failure->message) : svg;
    }

    TempDir mDir;
    std::string mBefore;
};

TEST_F(GraphvizTest, GetsTheGraphAndGivesThePicture)
{
    EXPECT_EQ(Drawn("#!/bin/sh\necho \"$@\"\ncat\n"), "-Tsvg\ndigraph {}");
}

TEST_F(GraphvizTest, ThatFailsIsTold)
{
    EXPECT_EQ(Drawn("#!/bin/sh\nexit 3\n"), "graphviz: Graphviz's program dot could not draw the graph: exit status 3");
    EXPECT_EQ(Drawn("#!/bin/sh\nkill -9 $$\n"), "graphviz: Graphviz's program dot could not draw the graph: it was killed");
}

TEST_F(GraphvizTest, ThatIsNotThereIsWrongUse)
{
    setenv("PATH", mDir.Path("none").c_str(), 1);
    std::string svg;
    const auto failure = diagnosis::DrawWithGraphviz("digraph {}", svg);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::NO_GRAPHVIZ);
    EXPECT_EQ(failure->status, diagnosis::ExitStatus::WRONG_USE);
}

TEST_F(GraphvizTest, ThatCannotBeStartedIsTold)
{
    mDir.Write("bin/dot", "no program");
    setenv("PATH", mDir.Path("bin").c_str(), 1);
    std::filesystem::permissions("bin/dot", std::filesystem::perms::none);
    std::string svg;
    const auto failure = diagnosis::DrawWithGraphviz("digraph {}", svg);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->message, "Graphviz's program dot could not draw the graph: Permission denied");
}

} // namespace
