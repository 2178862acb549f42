// Random texts and numbers that are inserted into a table are read back unchanged.

#include <array>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_table.h"
#include "arborist/stores/sql/sql_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"

namespace FT::sql {
namespace {

class SqlRoundTripRandomTest : public testing::Test {
protected:
    SqlRoundTripRandomTest()
    {
        mDatabase.Open(":memory:");
        mTable.Create();
    }

    SqlRecord Record(const std::string& text, long long number, double real) const
    {
        SqlRecord record(mTable.GetFields());
        record.SetString("text", text);
        record.SetInteger("number", number);
        record.SetDouble("real", real);
        return record;
    }

    // A column of the row in the table; "none" unless there is exactly one such row.
    std::string Column(const std::string& condition, const char* name)
    {
        const bool isOne = mTable.Open(condition) && mTable.GetRecordCount() == 1;
        return isOne ? mTable.GetRecord(0)->GetValue(name)->AsString() : "none";
    }

    LogCapture mLog;
    SqlDatabase mDatabase;
    std::array<SqlField, 5> mFields{SqlField("_id", TypeInteger, FlagPrimaryKey, FlagNotNull),
        SqlField("text", TypeText), SqlField("number", TypeInteger), SqlField("real", TypeReal),
        SqlField(FieldUseEnd)};
    SqlTable mTable{mDatabase.GetHandle(), "things", mFields.data(), mFields.size()};
};

// Any bytes except zero, which ends a statement; characters of SQL's syntax occur more often.
std::string AnyText(RandomCases& cases)
{
    constexpr std::string_view SIGNS = "'\"\\;%_-*/`[]()?:@$\n\r\t ";
    std::string text;
    for (std::size_t left = cases.Below(20); left > 0; --left) {
        text += cases.OnceIn(2) ? SIGNS[cases.Below(SIGNS.size())] : static_cast<char>(1 + cases.Below(255));
    }
    return text;
}

TEST_F(SqlRoundTripRandomTest, TextsComeBackAsTheyWereAndAreFoundByThemselves)
{
    RandomCases cases(1000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        if (index % 100 == 0) {
            mTable.Truncate(); // each query scans the table
        }
        const std::string text = AnyText(cases);
        ASSERT_TRUE(mTable.AddRecord(Record(text, index, 0.0))) << text;
        const std::string added = "number = " + std::to_string(index);
        EXPECT_EQ(Column(added, "text"), text) << cases.GetSeed();
        EXPECT_EQ(Column(added + " and text = '" + QuoteStr(text) + "'", "text"), text) << cases.GetSeed();
        EXPECT_EQ(Column("text = '" + QuoteStr(text) + "' limit 1", "text"), text) << cases.GetSeed();
    }
    EXPECT_EQ(mTable.GetTotalRecordCount(), (cases.GetCount() - 1) % 100 + 1);
    EXPECT_TRUE(mLog.Lines().empty());
}

TEST_F(SqlRoundTripRandomTest, AnUpdateChangesItsRowAlone)
{
    RandomCases cases(500);
    mTable.AddRecord(Record("kept", 1, 0.0));
    mTable.AddRecord(Record("changed", 2, 0.0));
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string text = AnyText(cases);
        SqlRecord record = Record(text, 2, 0.0);
        record.SetInteger("_id", 2);
        ASSERT_TRUE(mTable.UpdateRecord(record)) << text;
        EXPECT_EQ(Column("_id = 2", "text"), text) << cases.GetSeed();
        EXPECT_EQ(Column("_id = 1", "text"), "kept");
    }
}

TEST_F(SqlRoundTripRandomTest, NumbersComeBackAsTheyWere)
{
    RandomCases cases(1000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const auto high = static_cast<std::uint64_t>(cases.Below(1U << 31)) << 33;
        const auto number = static_cast<long long>((high | cases.Below(1ULL << 32)) >> cases.Below(64));
        const double real = static_cast<double>(cases.Below(2000000)) / 256.0 - 4000.0; // exact in eight decimals
        ASSERT_TRUE(mTable.AddRecord(Record("", cases.OnceIn(2) ? number : number ^ LLONG_MIN, real)));
        const std::string last = "_id = " + std::to_string(index + 1);
        ASSERT_EQ(mTable.Open(last), true);
        const SqlRecord& row = *mTable.GetRecord(0);
        long long scanned = 0;
        std::sscanf(row.GetValue("number")->AsString().c_str(), "%lld", &scanned);
        EXPECT_EQ(row.GetValue("number")->AsInteger(), scanned);
        EXPECT_TRUE(scanned == number || scanned == (number ^ LLONG_MIN));
        EXPECT_EQ(row.GetValue("real")->AsDouble(), real);
    }
}

TEST(SqlValueRandomTest, IntegersAreReadAsTheLibraryReadsThem)
{
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string text = cases.Join({" ", "\t", "\n", "-", "+", "0x", "0", "1", "9", "7e3", ".", "x", ",",
            "9223372036854775807", "9223372036854775808", "\xA0"}, 5);
        SqlValue value;
        value.SetValue(text, TypeText);
        long long scanned = 0;
        std::sscanf(text.c_str(), "%lld", &scanned);
        EXPECT_EQ(value.AsInteger(), scanned) << "'" << text << "' seed " << cases.GetSeed();
    }
}

TEST(SqlValueRandomTest, DoublesAreWrittenAsTheLibraryWritesThem)
{
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const double number = std::strtod((cases.Text("0123456789", 20) + "." + cases.Text("0123456789", 20) + "e" +
            std::to_string(static_cast<int>(cases.Below(400)) - 200)).c_str(), nullptr);
        char text[400];
        std::snprintf(text, sizeof(text), "%0.8f", number);
        SqlValue value;
        value.SetDouble(number);
        EXPECT_EQ(value.AsString(), std::string(text).substr(0, 127)) << "seed " << cases.GetSeed();
    }
}

} // namespace
} // namespace FT::sql
