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
            places.push_back(trouble.subject + " " + trouble.file + ":" + std::to_string(trouble.line));
        };
    }

    std::vector<std::string> lines;
    std::vector<std::string> places; // subject, file and line
};

TEST(TroubleWatchTest, HearsWhileItLives)
{
    Heard heard;
    TroubleWatch::Tell(Kind::BAD_EXTRA, "before", {});
    {
        const TroubleWatch watch(heard.Listener());
        TroubleWatch::Tell(Kind::BAD_EXTRA, "now", {});
    }
    TroubleWatch::Tell(Kind::BAD_EXTRA, "after", {});
    EXPECT_THAT(heard.lines, ElementsAre("3 now"));
}

TEST(TroubleWatchTest, HearsOfThePlace)
{
    Heard heard;
    const TroubleWatch watch(heard.Listener());
    TroubleWatch::Tell(Kind::TABLE_NOT_BUILT, {}, {"T", "rules.xml", 7});
    TroubleWatch::Tell(Kind::BAD_EXTRA, {}, {});
    EXPECT_THAT(heard.places, ElementsAre("T rules.xml:7", " :0"));
}

TEST(TroubleWatchTest, TheInnermostHearsInPlaceOfTheOuter)
{
    Heard outer;
    Heard inner;
    const TroubleWatch watch(outer.Listener());
    {
        const TroubleWatch within(inner.Listener());
        TroubleWatch::Tell(Kind::BAD_EXTRA, "a", {});
    }
    TroubleWatch::Tell(Kind::BAD_EXTRA, "b", {});
    EXPECT_THAT(inner.lines, ElementsAre("3 a"));
    EXPECT_THAT(outer.lines, ElementsAre("3 b"));
}

TEST(TroubleWatchTest, OtherThreadsAreNotHeard)
{
    Heard heard;
    const TroubleWatch watch(heard.Listener());
    std::thread([] { TroubleWatch::Tell(Kind::BAD_EXTRA, "elsewhere", {}); }).join();
    EXPECT_THAT(heard.lines, IsEmpty());
}

TEST(StatementTroubleTest, IsOfTheInnermostKind)
{
    Heard heard;
    const TroubleWatch watch(heard.Listener());
    StatementTrouble::Tell("a", "log.db");
    {
        const StatementTrouble repairs(Kind::REPAIRS_UNREADABLE);
        StatementTrouble::Tell("b", "log.db");
        const StatementTrouble elsewhere(std::nullopt);
        StatementTrouble::Tell("told elsewhere", "log.db");
    }
    StatementTrouble::Tell("c", "log.db");
    EXPECT_THAT(heard.lines, ElementsAre("0 a", "2 b", "0 c"));
    EXPECT_THAT(heard.places, testing::Each(" log.db:0"));
}

} // namespace
