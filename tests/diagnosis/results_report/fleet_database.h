#ifndef ARBORIST_TESTS_DIAGNOSIS_RESULTS_REPORT_FLEET_DATABASE_H
#define ARBORIST_TESTS_DIAGNOSIS_RESULTS_REPORT_FLEET_DATABASE_H

#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/results_report/fleet.h"
#include "diagnosis/sqlite/connection.h"
#include "tests/support/temp_dir.h"

/// Writes a results database bundle by bundle. Each call adds something to the last bundle, and returns the object.
class FleetDatabase {
public:
    FleetDatabase();

    /// A bundle of an engine and a rule set; "" for no device. `now` is "YYYY-MM-DD HH:MM:SS" or empty.
    FleetDatabase& Bundle(const std::string& name, const std::string& now, const std::string& device = "",
        std::int64_t microseconds = 1000, const std::string& ruleSet = "sha256:1");
    FleetDatabase& Failed(const std::string& code, bool retry = false);
    /// A tree of one version; complete unless it is said otherwise.
    FleetDatabase& Tree(const std::string& tree, const std::string& verdict, bool isComplete = true);
    /// A root cause of the last tree, with the repairs that it names; members of its cut set besides the event make it
    /// another definition.
    FleetDatabase& Cause(
        const std::string& event, const std::vector<std::string>& repairs = {}, const std::string& others = "");
    /// An open check of the last tree.
    FleetDatabase& Open(const std::string& event, const std::string& check, const std::string& reason,
        const std::string& detail = "");
    /// A repair on record; without a date if that is empty.
    FleetDatabase& Repaired(const std::string& repair, const std::string& date);

    /// Ends writing and reads the figures; fails the test if that fails.
    diagnosis::Fleet Read(std::int64_t withinDays = 30);

    const std::string& Path() const { return mPath; }

private:
    void Run(const std::string& sql, const std::vector<std::string>& texts = {});
    /// The id of the row with these texts, which is added unless it is there.
    std::int64_t IdIn(const std::string& table, const std::string& columns, const std::vector<std::string>& texts);
    std::string Place(const std::string& table) const;

    TempDir mDir;
    std::string mPath;
    diagnosis::Connection mDatabase;
    std::int64_t mBundle = 0;
    std::int64_t mTree = 0;
};

#endif
