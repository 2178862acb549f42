#include "arborist/frame/thread_value.h"

#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace {

std::atomic<int> living = 0;

struct Counted {
    Counted() { ++living; }
    ~Counted() { living -= text == "kept" ? 1 : 1000; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    std::string text;
};

struct OneName;
struct OtherName;

TEST(ThreadValueTest, EachThreadHasItsOwnUntilItEnds)
{
    for (int thread = 1; thread <= 20; ++thread) {
        std::thread([] {
            auto& value = ValueOfThread<Counted, OneName>();
            EXPECT_EQ(value.text, "");
            value.text = "kept";
            EXPECT_EQ((ValueOfThread<Counted, OneName>().text), "kept");
            EXPECT_EQ(living, 1);
        }).join();
        EXPECT_EQ(living, 0) << "destroyed as it was left";
    }
}

TEST(ThreadValueTest, NamesTellValuesOfOneTypeApart)
{
    ValueOfThread<int, OneName>() = 1;
    ValueOfThread<int, OtherName>() = 2;
    EXPECT_EQ((ValueOfThread<int, OneName>()), 1);
}

} // namespace
