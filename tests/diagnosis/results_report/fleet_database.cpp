#include "tests/diagnosis/results_report/fleet_database.h"

#include <gtest/gtest.h>

#include "diagnosis/results_db/results_database.h"
#include "diagnosis/results_report/fleet_reader.h"

using diagnosis::Connection;
using diagnosis::Fleet;

FleetDatabase::FleetDatabase() : mPath(mDir.Path("results.db"))
{
    EXPECT_TRUE(mDatabase.Open(mPath, Connection::Mode::CREATE));
    // Nothing is lost if a test ends early.
    EXPECT_TRUE(mDatabase.Execute("PRAGMA synchronous = OFF; PRAGMA journal_mode = MEMORY"));
    EXPECT_FALSE(diagnosis::results_db::CreateSchema(mDatabase, mPath));
    Run("BEGIN");
}

FleetDatabase& FleetDatabase::Bundle(const std::string& name, const std::string& now, const std::string& device,
    std::int64_t microseconds, const std::string& ruleSet)
{
    const std::int64_t run = IdIn("run", "engine, rule_set", {"1.0", ruleSet});
    ++mBundle;
    Run("INSERT INTO bundle VALUES (" + std::to_string(mBundle) + ", " + std::to_string(run)
            + ", ?1, CAST(strftime('%s', nullif(?2, '')) AS INTEGER), 1, " + std::to_string(microseconds) + ", ?3)",
        {name, now, device});
    return *this;
}

FleetDatabase& FleetDatabase::Failed(const std::string& code, bool retry)
{
    const std::string bundle = std::to_string(mBundle);
    Run("UPDATE bundle SET ok = 0 WHERE id = " + bundle);
    Run("INSERT INTO failure VALUES (" + bundle + ", ?1, 'why', " + (retry ? "1" : "0") + ")", {code});
    return *this;
}

FleetDatabase& FleetDatabase::Tree(const std::string& tree, const std::string& verdict, bool isComplete)
{
    mTree = IdIn("tree_def", "tree, version", {tree, "1"});
    const std::int64_t outcome = IdIn("outcome_def", "verdict, is_fault, complete, total, decided, not_applicable, "
        "not_selected, not_checked, no_data, error, possible_causes, possible_causes_truncated",
        {verdict, verdict == "fault" ? "1" : "0", isComplete ? "1" : "0", "0", "0", "0", "0", "0", "0", "0", "0", "0"});
    Run("INSERT INTO tree VALUES (" + std::to_string(mBundle) + ", " + std::to_string(mTree) + ", "
        + std::to_string(outcome) + ")");
    return *this;
}

FleetDatabase& FleetDatabase::Cause(
    const std::string& event, const std::vector<std::string>& repairs, const std::string& others)
{
    const std::int64_t cause = IdIn("cause_def", "tree_def, event, name, cut_set, fault_description, suggestions, user_defined",
        {std::to_string(mTree), event, "Name of " + event, event + others, "", "", ""});
    for (std::size_t place = 0; place < repairs.size(); ++place) {
        Run("INSERT OR IGNORE INTO repair VALUES (" + std::to_string(cause) + ", " + std::to_string(place) + ", ?1, '', '')",
            {repairs[place]});
    }
    Run("INSERT INTO root_cause VALUES (" + std::to_string(mBundle) + ", " + std::to_string(cause) + ")");
    return *this;
}

FleetDatabase& FleetDatabase::Open(
    const std::string& event, const std::string& check, const std::string& reason, const std::string& detail)
{
    const std::int64_t id = IdIn("check_def", "tree_def, event, rule, \"check\", reason, detail, rests_on_default",
        {std::to_string(mTree), event, "", check, reason, detail, "0"});
    Run("INSERT INTO open_check VALUES (" + std::to_string(mBundle) + ", " + std::to_string(id) + ")");
    return *this;
}

FleetDatabase& FleetDatabase::Repaired(const std::string& repair, const std::string& date)
{
    Run("INSERT INTO repaired VALUES (" + std::to_string(mBundle) + ", " + Place("repaired")
            + ", ?1, CAST(strftime('%s', nullif(?2, '')) AS INTEGER))",
        {repair, date});
    return *this;
}

Fleet FleetDatabase::Read(std::int64_t withinDays)
{
    Run("COMMIT");
    Fleet fleet;
    const auto failure = diagnosis::ReadFleet(mPath, withinDays, fleet);
    EXPECT_FALSE(failure) << failure->message;
    return fleet;
}

void FleetDatabase::Run(const std::string& sql, const std::vector<std::string>& texts)
{
    auto statement = mDatabase.Prepare(sql);
    ASSERT_TRUE(statement) << sql << ": " << mDatabase.GetError();
    int parameter = 0;
    for (const std::string& text : texts) {
        statement->Bind(++parameter, text);
    }
    statement->Step();
    ASSERT_FALSE(mDatabase.HasError()) << sql << ": " << mDatabase.GetError();
}

std::int64_t FleetDatabase::IdIn(
    const std::string& table, const std::string& columns, const std::vector<std::string>& texts)
{
    std::string marks;
    for (std::size_t i = 1; i <= texts.size(); ++i) {
        marks += (i == 1 ? "?" : ", ?") + std::to_string(i);
    }
    const auto find = [&] {
        auto statement = mDatabase.Prepare("SELECT id FROM " + table + " WHERE (" + columns + ") = (" + marks + ")");
        EXPECT_TRUE(statement) << mDatabase.GetError();
        for (std::size_t i = 0; i < texts.size(); ++i) {
            statement->Bind(static_cast<int>(i) + 1, texts[i]);
        }
        return statement->Step() ? statement->Integer(0) : 0;
    };
    const std::int64_t there = find();
    if (there == 0) {
        Run("INSERT INTO " + table + "(" + columns + ") VALUES (" + marks + ")", texts);
    }
    return there == 0 ? find() : there;
}

std::string FleetDatabase::Place(const std::string& table) const
{
    return "(SELECT count(*) FROM " + table + " WHERE bundle = " + std::to_string(mBundle) + ")";
}
