#include "arborist/frame/stopping.h"

#include <chrono>
#include <optional>

#include <gtest/gtest.h>

namespace {

using Seconds = std::chrono::duration<double>;

class Stopping : public testing::Test {
protected:
    StopRequest mRequest;
    StopScope mScope{&mRequest};
};

TEST_F(Stopping, WithoutARequestPassesEveryPoint)
{
    mRequest.Start(std::nullopt);
    EXPECT_NO_THROW(StopPoint::Pass());
    EXPECT_FALSE(StopPoint::IsDue());
    EXPECT_FALSE(StopPoint::HasStopped());
}

TEST_F(Stopping, ARequestEndsAtTheNextPointAndOnlyThere)
{
    mRequest.Start(std::nullopt);
    mRequest.Request();
    EXPECT_THROW(StopPoint::Pass(), DetectionStopped);
    EXPECT_TRUE(StopPoint::HasStopped());
    EXPECT_NO_THROW(StopPoint::Pass());
    EXPECT_FALSE(StopPoint::IsDue());
}

TEST_F(Stopping, APointThatMustNotThrowLeavesItToTheNext)
{
    mRequest.Start(std::nullopt);
    mRequest.Request();
    EXPECT_TRUE(StopPoint::IsDue());
    EXPECT_TRUE(StopPoint::IsDue());
    EXPECT_FALSE(StopPoint::HasStopped());
    EXPECT_THROW(StopPoint::Pass(), DetectionStopped);
}

TEST_F(Stopping, ARequestBeforeOrAfterADetectionIsForgotten)
{
    mRequest.Request();
    mRequest.Start(std::nullopt);
    EXPECT_NO_THROW(StopPoint::Pass());
    mRequest.End();
    mRequest.Request();
    mRequest.Start(std::nullopt);
    EXPECT_NO_THROW(StopPoint::Pass());
}

TEST_F(Stopping, ADetectionAfterAStoppedOneIsNotStopped)
{
    mRequest.Start(std::nullopt);
    mRequest.Request();
    EXPECT_THROW(StopPoint::Pass(), DetectionStopped);
    mRequest.End();
    mRequest.Start(std::nullopt);
    EXPECT_FALSE(StopPoint::HasStopped());
    EXPECT_NO_THROW(StopPoint::Pass());
}

TEST_F(Stopping, ATimeThatIsOverIsARequest)
{
    mRequest.Start(Seconds(0));
    EXPECT_THROW(StopPoint::Pass(), DetectionStopped);
}

TEST_F(Stopping, ATimeOfYearsIsNoLimit)
{
    for (const double seconds : {3600.0, 1e9, 1e300}) {
        mRequest.Start(Seconds(seconds));
        EXPECT_NO_THROW(StopPoint::Pass()) << seconds;
    }
}

TEST_F(Stopping, OnlyTheInnermostScopeCounts)
{
    mRequest.Start(std::nullopt);
    mRequest.Request();
    {
        const StopScope unstoppable(nullptr);
        EXPECT_NO_THROW(StopPoint::Pass());
        EXPECT_FALSE(StopPoint::IsDue());
    }
    EXPECT_THROW(StopPoint::Pass(), DetectionStopped);
}

} // namespace
