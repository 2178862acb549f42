#include "diagnosis/evidence/warning_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using diagnosis::WarningCode;
using diagnosis::WarningList;
using testing::ElementsAre;

TEST(WarningListTest, TellsEachWarningOnceWithItsCount)
{
    WarningList list;
    list.Add(WarningCode::BAD_EXTRA, "one");
    list.Add(WarningCode::STOPPED, "two");
    list.Add(WarningCode::BAD_EXTRA, "one");
    std::vector<std::string> told;
    for (const auto& warning : list.Told()) {
        told.push_back(CodeWord(warning.code) + ": " + warning.message);
    }
    EXPECT_THAT(told, ElementsAre("bad_extra: one (2 times)", "stopped: two"));
}

TEST(WarningListTest, KeepsALimitedNumberOfEachCodeAndCountsTheRest)
{
    WarningList list;
    for (std::size_t i = 0; i < WarningList::LARGEST_NUMBER + 7; ++i) {
        list.Add(WarningCode::BAD_EXTRA, std::to_string(i));
    }
    const auto told = list.Told();
    EXPECT_EQ(told.size(), WarningList::LARGEST_NUMBER + 1);
    EXPECT_EQ(told.back().message, "and 7 more of this kind");
    EXPECT_EQ(told.back().code, WarningCode::BAD_EXTRA);
}

} // namespace
