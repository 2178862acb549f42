#include "diagnosis/results_report/wilson.h"

#include <gtest/gtest.h>

namespace diagnosis {
namespace {

struct PublishedInterval {
    std::uint64_t part;
    std::uint64_t whole;
    double low;
    double high;
};

// The four examples of Newcombe's table I, method 3.
TEST(WilsonIntervalTest, EqualsThePublishedExamples)
{
    for (const PublishedInterval& published : {PublishedInterval{81, 263, 0.2553, 0.3662},
             PublishedInterval{15, 148, 0.0624, 0.1605}, PublishedInterval{0, 20, 0.0000, 0.1611},
             PublishedInterval{1, 29, 0.0061, 0.1718}}) {
        const ShareInterval interval = WilsonInterval(published.part, published.whole);
        EXPECT_NEAR(interval.low, published.low, 0.00005) << published.part << " of " << published.whole;
        EXPECT_NEAR(interval.high, published.high, 0.00005) << published.part << " of " << published.whole;
        EXPECT_DOUBLE_EQ(interval.share, static_cast<double>(published.part) / static_cast<double>(published.whole));
    }
}

TEST(WilsonIntervalTest, NoneAndAllOfASampleReachExactlyToTheirEnd)
{
    for (std::uint64_t whole = 1; whole < 200; ++whole) {
        EXPECT_EQ(WilsonInterval(0, whole).low, 0) << whole;
        EXPECT_GT(WilsonInterval(0, whole).high, 0) << whole;
        EXPECT_EQ(WilsonInterval(whole, whole).high, 1) << whole;
        EXPECT_LT(WilsonInterval(whole, whole).low, 1) << whole;
    }
}

TEST(WilsonIntervalTest, ContainsTheShareAndMirrorsThatOfTheRest)
{
    for (std::uint64_t part = 0; part <= 50; ++part) {
        const ShareInterval interval = WilsonInterval(part, 50);
        const ShareInterval rest = WilsonInterval(50 - part, 50);
        EXPECT_LE(interval.low, interval.share);
        EXPECT_GE(interval.high, interval.share);
        EXPECT_NEAR(interval.low, 1 - rest.high, 1e-12);
    }
}

TEST(WilsonIntervalTest, NothingIsKnownOfAnEmptySample)
{
    const ShareInterval interval = WilsonInterval(0, 0);
    EXPECT_EQ(interval.share, 0);
    EXPECT_EQ(interval.low, 0);
    EXPECT_EQ(interval.high, 1);
}

} // namespace
} // namespace diagnosis
