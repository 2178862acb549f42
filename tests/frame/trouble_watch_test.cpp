#include "arborist/frame/trouble_watch.h"

#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Kind = Evidence::Trouble::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

// Collects the trouble that a watch receives.
class Heard {
public:
    TroubleWatch::Listener Listener()
    {
        return [this](const Evidence::Trouble& trouble) {
            lines.push_back(std::to_string(static_cast<int>(trouble.kind)) + " " + trouble.words);
        };
    }

    std::vector<std::string> lines;
};

TEST(TroubleWatchTest, HearsWhileItLives)
{
    Heard heard;
    TroubleWatch::Tell(Kind::BAD_EXTRA, "before");
    {
        const TroubleWatch watch(heard.Listener());
        TroubleWatch::Tell(Kind::BAD_EXTRA, "now");
    }
    TroubleWatch::Tell(Kind::BAD_EXTRA, "after");
    EXPECT_THAT(heard.lines, ElementsAre("3 now"));
}

TEST(TroubleWatchTest, TheInnermostHearsInPlaceOfTheOuter)
{
    Heard outer;
    Heard inner;
    const TroubleWatch watch(outer.Listener());
    {
        const TroubleWatch within(inner.Listener());
        TroubleWatch::Tell(Kind::BAD_EXTRA, "a");
    }
    TroubleWatch::Tell(Kind::BAD_EXTRA, "b");
    EXPECT_THAT(inner.lines, ElementsAre("3 a"));
    EXPECT_THAT(outer.lines, ElementsAre("3 b"));
}

TEST(TroubleWatchTest, OtherThreadsAreNotHeard)
{
    Heard heard;
    const TroubleWatch watch(heard.Listener());
    std::thread([] { TroubleWatch::Tell(Kind::BAD_EXTRA, "elsewhere"); }).join();
    EXPECT_THAT(heard.lines, IsEmpty());
}

TEST(StatementTroubleTest, IsOfTheInnermostKind)
{
    Heard heard;
    const TroubleWatch watch(heard.Listener());
    StatementTrouble::Tell("a");
    {
        const StatementTrouble repairs(Kind::REPAIRS_UNREADABLE);
        StatementTrouble::Tell("b");
        const StatementTrouble elsewhere(std::nullopt);
        StatementTrouble::Tell("told elsewhere");
    }
    StatementTrouble::Tell("c");
    EXPECT_THAT(heard.lines, ElementsAre("0 a", "2 b", "0 c"));
}

} // namespace
