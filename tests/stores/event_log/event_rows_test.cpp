#include "arborist/stores/event_log/event_rows.h"

#include <gmock/gmock.h>

#include "tests/stores/event_log/alarm_rule_db_helper_fixture.h"
#include "tests/support/time_zone.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What a visit tells of members, row by row.
std::string MemberTexts(EventRows& rows, const std::vector<std::string>& keys)
{
    rows.LoadMembers(keys);
    std::string text;
    for (std::size_t row = 0; row < rows.GetCount(); ++row) {
        for (std::size_t key = 0; key < keys.size(); ++key) {
            const EventMember member = rows.GetMember(row, key);
            switch (member.kind) {
            case EventMember::Kind::NO_EXTRA: text += "-"; break;
            case EventMember::Kind::RAW: text += "raw(" + std::string(member.text) + ")"; break;
            case EventMember::Kind::INTEGER: text += "#" + member.ToText(); break;
            case EventMember::Kind::TEXT: text += "'" + member.ToText() + "'"; break;
            }
        }
        text += " ";
    }
    return text;
}

class EventMembersTest : public AlarmRuleDbHelperTest {
protected:
    std::string Members(const std::vector<std::string>& keys, std::int64_t start = 0)
    {
        std::string text;
        mHelper->VisitEvents({7, 7, start, true}, [&](EventRows& rows) {
            text = MemberTexts(rows, keys);
            return true;
        });
        return text;
    }

    void Open(const EventLogBuilder& builder)
    {
        Write(builder);
        mHelper = std::make_unique<AlarmRuleDbHelper>();
    }

    std::unique_ptr<AlarmRuleDbHelper> mHelper;
};

TEST_F(EventMembersTest, AreReadWhenAskedForAndKept)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5,"b":"x"})"}, {20, 7, "1.0", ""}, {30, 7, "1.0", "{"},
        {40, 7, "1.0", "[1]"}, {50, 7, "1.0", R"({"a":{"b":1},"b":1.5})"}, {60, 7, "2.0", R"({"a":9})"},
        {70, 7, "", R"({"a":"\u0041","b":"007"})"}, {80, 7, "1.0", R"({"a":-1000000001})"},
        {90, 7, "1.0", R"({"a":-1000000000})"}, {95, 7, "1.0", R"({"a":123456789012345})"}}));
    const std::string onlyA = "#5 - raw({) '' '' 'A' '-1000000001' #-1000000000 '123456789012345' ";
    EXPECT_EQ(Members({"a"}), onlyA);
    EXPECT_EQ(Members({"a"}), onlyA);
    const std::string both = "'x'#5 -- raw({)raw({) '''' '1.5''' '007''A' '''-1000000001' ''#-1000000000 "
                             "'''123456789012345' ";
    EXPECT_EQ(Members({"b", "a"}), both);
    EXPECT_EQ(Members({"a"}), onlyA);
    EXPECT_EQ(Members({"a", "a"}).substr(0, 5), "#5#5 ");
    EXPECT_EQ(Members({"b"}, 70), "'007' '' '' '' ");
}

TEST_F(EventMembersTest, MoreKeysThanAreKeptTakeTurns)
{
    std::string extra = "{";
    std::vector<std::string> keys;
    std::string expected;
    for (int key = 1; key <= 40; ++key) {
        keys.push_back("k" + std::to_string(key));
        extra += (key == 1 ? "\"" : ",\"") + keys.back() + "\":" + std::to_string(key);
        expected += "#" + std::to_string(key);
    }
    Open(EventLogBuilder().Row({10, 7, "1.0", extra + "}"}));
    for (int round = 0; round < 2; ++round) {
        for (int key = 1; key <= 40; ++key) {
            EXPECT_EQ(Members({keys[static_cast<std::size_t>(key) - 1]}), "#" + std::to_string(key) + " ");
        }
    }
    EXPECT_EQ(Members(keys), expected + " ");
}

TEST_F(EventMembersTest, TextsBeyondTheStoreAreReadAgain)
{
    EventLogBuilder builder;
    std::string expected;
    for (int row = 0; row < 6000; ++row) {
        const std::string value = std::to_string(row) + std::string(60, 'x');
        builder.Row({row, 7, "1.0", "{\"a\":\"" + value + "\"}"});
        expected += "'" + value + "' ";
    }
    builder.Row({9000, 7, "1.0", "{\"a\":\"" + std::string(70000, 'y') + "\"}"});
    Open(builder);
    const std::string first = Members({"a"});
    EXPECT_EQ(Members({"a"}), first);
    EXPECT_EQ(first.substr(0, 1000), expected.substr(0, 1000));
    EXPECT_THAT(first, testing::HasSubstr("raw({\"a\":\"5999" + std::string(60, 'x') + "\"})"));
    EXPECT_THAT(first, testing::EndsWith("yyy\"}) "));
}

// Rows of id 7 with members k1 to k`keys`, whose value is the number of the row; the last k1 is `lastValue`.
EventLogBuilder RowsWithMembers(int rows, int keys, const std::string& lastValue)
{
    EventLogBuilder builder;
    for (int row = 1; row <= rows; ++row) {
        const std::string value = std::to_string(row % 100);
        std::string extra = "{\"k1\":" + (row == rows ? lastValue : value);
        for (int key = 2; key <= keys; ++key) {
            extra += ",\"k" + std::to_string(key) + "\":" + value;
        }
        builder.Row({row, 7, "1.0", extra + "}"});
    }
    return builder;
}

std::vector<std::string> MemberKeys(int keys)
{
    std::vector<std::string> names;
    for (int key = 1; key <= keys; ++key) {
        names.push_back("k" + std::to_string(key));
    }
    return names;
}

TEST_F(EventMembersTest, MoreMembersThanThereIsRoomForAreReadAgain)
{
    Open(RowsWithMembers(3000, 32, "1000000000"));
    std::string expected;
    for (int row = 1; row <= 3000; ++row) {
        for (int key = 1; key <= 32; ++key) {
            expected += "#" + (row == 3000 && key == 1 ? "1000000000" : std::to_string(row % 100));
        }
        expected += " ";
    }
    EXPECT_EQ(Members(MemberKeys(32)), expected);
    EXPECT_EQ(Members(MemberKeys(32)), expected);
}

TEST_F(EventMembersTest, NumbersTooLargeForTheRoomThatIsLeftAreReadAgain)
{
    Open(RowsWithMembers(3000, 20, "1000000000"));
    std::string expected;
    for (int row = 1; row < 3000; ++row) {
        expected += "#" + std::to_string(row % 100) + " ";
    }
    mHelper->Foresee(7, 7, MemberKeys(20));
    for (int round = 0; round < 2; ++round) {
        const std::string told = Members({"k1"});
        EXPECT_EQ(told.substr(0, expected.size()), expected);
        EXPECT_THAT(told.substr(expected.size()), testing::StartsWith("raw({\"k1\":1000000000,"));
        EXPECT_THAT(Members({"k2"}), testing::EndsWith("#98 #99 #0 "));
    }
}

TEST_F(EventMembersTest, RowsReadInOneGoThatCannotBeKeptAreReadAgain)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5})"}, {20, 7, "1.0", "{"}, {30, 7, "1.0", ""}}));
    mHelper->Foresee(7, 7, {"a"});
    for (int round = 0; round < 2; ++round) {
        std::string text;
        mHelper->VisitEvents({7, 7, 0, true, true}, [&](EventRows& rows) {
            text = MemberTexts(rows, {"a"});
            return true;
        });
        EXPECT_EQ(text, "#5 raw({) - ");
    }
}

TEST_F(EventMembersTest, MembersForeseenInTheMiddleLeaveThoseAroundAsTheyAre)
{
    EventLogBuilder builder;
    for (int row = 0; row < 50; ++row) {
        builder.Row({row, 1 + row % 10, "1.0", R"({"a":)" + std::to_string(row * 10) + R"(,"b":"x)" +
            std::to_string(row) + "\"}"});
    }
    Open(builder);
    const auto members = [this](const std::vector<std::string>& keys) {
        std::string text;
        mHelper->VisitEvents({1, 10, 20, false, true}, [&](EventRows& rows) {
            text += MemberTexts(rows, keys);
            return false;
        });
        return text;
    };
    std::string onlyA;
    std::string onlyB;
    for (int id = 1; id <= 10; ++id) {
        for (int row = id - 1; row < 50; row += 10) {
            onlyA += row < 20 ? "" : "#" + std::to_string(row * 10) + " ";
            onlyB += row < 20 ? "" : "'x" + std::to_string(row) + "' ";
        }
    }
    mHelper->Foresee(1, 10, {"a"});
    EXPECT_EQ(members({"a"}), onlyA);
    mHelper->Foresee(4, 6, {"b"});
    mHelper->Foresee(6, 300, {"c", "b"});
    EXPECT_EQ(members({"a"}), onlyA);
    EXPECT_EQ(members({"b"}), onlyB);
    EXPECT_EQ(members({"a"}), onlyA);
}

TEST_F(EventMembersTest, ChangeDuringAVisitGivesTheRowsOfAFreshQuery)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5})"}, {20, 7, "1.0", R"({"a":6})"}}));
    std::string text;
    mHelper->VisitEvents({7, 7, 0, true}, [&](EventRows& rows) {
        EventLogBuilder::Run(mPath, "delete from event_info where _ID = 1");
        text = MemberTexts(rows, {"a"});
        return true;
    });
    EXPECT_EQ(text, "raw({\"a\":6}) ");
    EXPECT_EQ(Members({"a"}), "#6 ");
    EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE, VERSION_LINE));
}

TEST_F(EventMembersTest, DaysAreLocal)
{
    // 23:30 of 31 December in UTC, half past midnight in the zone of the tests.
    Open(EventLogBuilder().Rows({{1704065400, 7, "1.0", ""}, {1703980800, 7, "1.0", ""}}));
    std::vector<std::int32_t> days;
    for (int round = 0; round < 2; ++round) {
        mHelper->VisitEvents({7, 7, 0, true}, [&](EventRows& rows) {
            days.push_back(rows.GetDayOfMonth(0));
            days.push_back(rows.GetDayOfMonth(1));
            return true;
        });
    }
    EXPECT_THAT(days, ElementsAre(1, 31, 1, 31));
}

// Rows of one hour, in a zone whose midnight lies in the middle of it.
TEST_F(EventMembersTest, DaysAreToldApartWithinAnHour)
{
    const TimeZone zone("IST-5:30");
    EventLogBuilder builder;
    for (std::int64_t minute = 0; minute < 60; ++minute) {
        builder.Row({1704045600 + minute * 60, 7, "1.0", ""}); // 18:00 to 18:59 in UTC
    }
    Open(builder);
    std::vector<std::int32_t> days;
    mHelper->VisitEvents({7, 7, 0, true}, [&](EventRows& rows) {
        for (std::size_t row = 0; row < rows.GetCount(); ++row) {
            days.push_back(rows.GetDayOfMonth(row));
        }
        return true;
    });
    std::vector<std::int32_t> expected(30, 31);
    expected.resize(60, 1);
    EXPECT_EQ(days, expected);
}

} // namespace
