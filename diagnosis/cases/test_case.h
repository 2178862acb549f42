#ifndef ARBORIST_DIAGNOSIS_CASES_TEST_CASE_H
#define ARBORIST_DIAGNOSIS_CASES_TEST_CASE_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <json/value.h>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/log_db/event_line.h"

namespace diagnosis::cases {

/// What a case demands of the answer of a detection. Nothing is demanded of what it doesn't name.
struct Expectations {
    /// The root causes of a tree: the ids in order with repetitions, or the set of the ids.
    struct Causes {
        std::vector<std::string> ids;
        bool inOrder = true;
    };

    /// By tree id.
    std::map<std::string, Causes> causes;
    /// The word of TreeVerdictText by tree id.
    std::map<std::string, std::string> verdicts;
    /// By tree id, the number of checks for words of CheckText, "total" and "open".
    std::map<std::string, std::map<std::string, std::size_t>> checks;
    /// Ids of trees of which every check is decided.
    std::vector<std::string> decidedTrees;
    /// The word of StateText by event id, in every place of the event.
    std::map<std::string, std::string> statuses;
    /// The word of ReasonText by rule name or event id.
    std::map<std::string, std::string> reasons;
    /// Texts that a line of the library's log contains, and texts that none contains.
    std::vector<std::string> log;
    std::vector<std::string> noLog;

    bool IsEmpty() const
    {
        return causes.empty() && verdicts.empty() && checks.empty() && decidedTrees.empty() && statuses.empty()
            && reasons.empty() && log.empty() && noLog.empty();
    }
};

/// A table of an external database.
struct CaseTable {
    std::string name;
    /// Definitions of columns as CREATE TABLE takes them.
    std::vector<std::string> columns;
    /// Values by column: texts, numbers or null.
    std::vector<std::vector<Json::Value>> rows;
};

/// An external database on the device.
struct CaseDatabase {
    /// Its path on the device. A part of the path that ends in ".zip" is an archive, and the rest is the path in it.
    std::string path;
    std::vector<CaseTable> tables;
    /// Its line in the case file.
    int line = 0;
};

/// A test of a rule set: a device with its data, and the answer that the rules must give for it.
struct TestCase {
    /// The case file as it was named, and the line at which the case begins.
    std::string file;
    int line = 0;
    std::string name;
    /// False for a recorded case that nobody has read yet.
    bool isReviewed = true;

    /// Device, scene, tag, moment, zone and settings. `ruleFileDir` is absolute. The tag is empty for the only tag of
    /// the rule set.
    Bundle bundle;
    /// The rows of the event log in order. Nothing for a device without a log.
    std::optional<std::vector<LoggedEvent>> events;
    /// Contents of files by their paths, as rules name them.
    std::map<std::string, std::string> files;
    std::vector<RepairRecord> repairs;
    std::vector<CaseDatabase> databases;
    /// Answers of code rules by the name of the rule.
    std::map<std::string, bool> answers;

    Expectations expected;
};

} // namespace diagnosis::cases

#endif
