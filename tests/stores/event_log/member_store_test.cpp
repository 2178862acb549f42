#include "arborist/stores/event_log/member_store.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// What a member is, as "#number" or "'text'"; "-" for one that isn't kept.
std::string Told(const MemberStore& store, MemberStore::Code code)
{
    if (MemberStore::IsInteger(code)) {
        return "#" + std::to_string(MemberStore::IntegerOf(code));
    }
    return MemberStore::IsText(code) ? "'" + std::string(store.TextOf(code)) + "'" : "-";
}

std::string Kept(MemberStore& store, const std::string& member)
{
    return Told(store, store.CodeOf(member));
}

TEST(MemberStoreTest, KeepsNumbersAndTexts)
{
    MemberStore store;
    store.Reset(4000);
    EXPECT_EQ(Kept(store, "7"), "#7");
    EXPECT_EQ(Kept(store, "a text"), "'a text'");
    EXPECT_EQ(Kept(store, ""), "''");
    EXPECT_EQ(Kept(store, "-3"), "#-3");
}

TEST(MemberStoreTest, StatesOfARowAreNoMembers)
{
    for (const MemberStore::Code code : {MemberStore::UNKNOWN, MemberStore::RAW, MemberStore::NO_EXTRA}) {
        EXPECT_FALSE(MemberStore::IsInteger(code));
        EXPECT_FALSE(MemberStore::IsText(code));
    }
}

TEST(MemberStoreTest, OnlyNumbersThatReadBackTheSameAreNumbers)
{
    MemberStore store;
    store.Reset(4000);
    for (const char* const number : {"0", "1", "2", "-1", "-2", "1000000000", "-1000000000"}) {
        EXPECT_EQ(Kept(store, number), "#" + std::string(number));
    }
    for (const char* const text : {"00", "01", "-0", "-01", "+1", " 1", "1 ", "1.0", "-", "1000000001", "-1000000001",
             "99999999999", "1e1"}) {
        EXPECT_EQ(Kept(store, text), "'" + std::string(text) + "'");
    }
}

TEST(MemberStoreTest, FrequentMembersHaveShortCodes)
{
    MemberStore store;
    store.Reset(4000);
    EXPECT_LT(store.CodeOf("100"), 256U);
    EXPECT_LT(store.CodeOf("-60"), 256U);
    EXPECT_LT(store.CodeOf("first text"), 256U);
}

TEST(MemberStoreTest, EqualMembersHaveEqualCodesWhileTheStoreGrows)
{
    MemberStore store;
    store.Reset(1000000);
    std::vector<MemberStore::Code> codes;
    const auto memberOf = [](int number) { return number % 3 == 0 ? std::to_string(500 - number)
                                                                  : "text " + std::to_string(number); };
    for (int number = 0; number < 4000; ++number) {
        codes.push_back(store.CodeOf(memberOf(number)));
    }
    for (int number = 0; number < 4000; ++number) {
        const MemberStore::Code code = codes[static_cast<std::size_t>(number)];
        EXPECT_EQ(store.CodeOf(memberOf(number)), code);
        EXPECT_EQ(Told(store, code), number % 3 == 0 ? "#" + memberOf(number) : "'" + memberOf(number) + "'");
    }
}

TEST(MemberStoreTest, WhatDoesNotFitIsRaw)
{
    MemberStore store;
    store.Reset(2000);
    EXPECT_EQ(store.CodeOf(std::string(70000, 'x')), MemberStore::RAW);
    const MemberStore::Code first = store.CodeOf("first");
    int stored = 0;
    for (int row = 0; row < 1000; ++row) {
        const std::string text = "text " + std::to_string(row);
        const MemberStore::Code code = store.CodeOf(text);
        if (code != MemberStore::RAW) {
            ++stored;
            EXPECT_EQ(Told(store, code), "'" + text + "'");
        }
    }
    EXPECT_GT(stored, 20);
    EXPECT_LT(stored, 200);
    EXPECT_EQ(store.CodeOf("first"), first);
    EXPECT_EQ(Kept(store, "5"), "#5") << "numbers take no room";
}

TEST(MemberStoreTest, StoreWithoutRoomTakesNumbersAlone)
{
    MemberStore store;
    store.Reset(0);
    EXPECT_EQ(store.CodeOf("x"), MemberStore::RAW);
    EXPECT_EQ(store.CodeOf(""), MemberStore::RAW);
    EXPECT_EQ(Kept(store, "1"), "#1");
}

} // namespace
