#include "arborist/stores/event_log/member_store.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// What the members of a row are, as "#number" or "'text'".
std::string Told(const MemberStore& store, MemberStore::Handle row, std::size_t columns)
{
    std::string text;
    for (std::size_t column = 0; column < columns; ++column) {
        const MemberStore::Handle code = store.CodeOf(row, columns, column);
        if (code == MemberStore::RAW || code == MemberStore::NO_EXTRA || code == MemberStore::UNKNOWN) {
            return "-";
        }
        text += MemberStore::IsInteger(code) ? "#" + std::to_string(MemberStore::IntegerOf(code))
                                             : "'" + std::string(store.TextOf(code)) + "'";
    }
    return text;
}

TEST(MemberStoreTest, KeepsNumbersAndTexts)
{
    MemberStore store;
    store.Reset(4000);
    EXPECT_EQ(Told(store, store.Store({"7"}), 1), "#7");
    EXPECT_EQ(Told(store, store.Store({"a text"}), 1), "'a text'");
    EXPECT_EQ(Told(store, store.Store({""}), 1), "''");
    EXPECT_EQ(Told(store, store.Store({"7", "x", "-3"}), 3), "#7'x'#-3");
}

TEST(MemberStoreTest, OnlyNumbersThatReadBackTheSameAreNumbers)
{
    MemberStore store;
    store.Reset(4000);
    for (const char* const number : {"0", "-1", "1073741823", "-1073741824"}) {
        EXPECT_EQ(Told(store, store.Store({number}), 1), "#" + std::string(number));
    }
    for (const char* const text : {"00", "01", "-0", "-01", "+1", " 1", "1 ", "1.0", "-", "1073741824", "-1073741825",
             "99999999999", "1e1"}) {
        EXPECT_EQ(Told(store, store.Store({text}), 1), "'" + std::string(text) + "'");
    }
}

TEST(MemberStoreTest, EqualRowsShareTheirPlace)
{
    MemberStore store;
    store.Reset(4000);
    const MemberStore::Handle row = store.Store({"a", "1"});
    EXPECT_NE(store.Store({"a", "2"}), row);
    EXPECT_EQ(store.Store({"a", "1"}), row);
    EXPECT_EQ(Told(store, row, 2), "'a'#1");
}

TEST(MemberStoreTest, KeepsItsPlacesWhileItGrows)
{
    MemberStore store;
    store.Reset(1000000);
    std::vector<MemberStore::Handle> texts;
    std::vector<MemberStore::Handle> rows;
    for (int number = 0; number < 2000; ++number) {
        texts.push_back(store.Store({"text " + std::to_string(number)}));
        rows.push_back(store.Store({std::to_string(number), "text " + std::to_string(number % 7)}));
    }
    for (int number = 0; number < 2000; ++number) {
        const std::string text = "text " + std::to_string(number);
        EXPECT_EQ(store.Store({text}), texts[static_cast<std::size_t>(number)]);
        EXPECT_EQ(Told(store, texts[static_cast<std::size_t>(number)], 1), "'" + text + "'");
        EXPECT_EQ(store.Store({std::to_string(number), "text " + std::to_string(number % 7)}),
            rows[static_cast<std::size_t>(number)]);
    }
}

TEST(MemberStoreTest, RowsThatBeginAlikeAreToldApart)
{
    MemberStore store;
    store.Reset(4000);
    const MemberStore::Handle three = store.Store({"1", "2", "3"});
    const MemberStore::Handle two = store.Store({"1", "2"});
    EXPECT_EQ(Told(store, three, 3), "#1#2#3");
    EXPECT_EQ(Told(store, two, 2), "#1#2");
    EXPECT_EQ(store.Store({"1", "2", "3"}), three);
}

TEST(MemberStoreTest, WhatDoesNotFitIsRaw)
{
    MemberStore store;
    store.Reset(2000);
    EXPECT_EQ(store.Store({std::string(70000, 'x')}), MemberStore::RAW);
    const MemberStore::Handle first = store.Store({"first", "1"});
    int stored = 0;
    for (int row = 0; row < 1000; ++row) {
        const std::string text = "text " + std::to_string(row);
        const MemberStore::Handle handle = store.Store({text, "1"});
        if (handle != MemberStore::RAW) {
            ++stored;
            EXPECT_EQ(Told(store, handle, 2), "'" + text + "'#1");
        }
    }
    EXPECT_GT(stored, 20);
    EXPECT_LT(stored, 200);
    EXPECT_EQ(store.Store({"first", "1"}), first);
    EXPECT_EQ(Told(store, store.Store({"5"}), 1), "#5") << "numbers take no room";
}

TEST(MemberStoreTest, StoreWithoutRoomTakesNumbersAlone)
{
    MemberStore store;
    store.Reset(0);
    EXPECT_EQ(store.Store({"x"}), MemberStore::RAW);
    EXPECT_EQ(store.Store({"1", "2"}), MemberStore::RAW);
    EXPECT_EQ(Told(store, store.Store({"1"}), 1), "#1");
}

} // namespace
