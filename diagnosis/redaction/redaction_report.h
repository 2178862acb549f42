#ifndef ARBORIST_DIAGNOSIS_REDACTION_REDACTION_REPORT_H
#define ARBORIST_DIAGNOSIS_REDACTION_REDACTION_REPORT_H

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace diagnosis {

/// Rows of the event log in which something was replaced.
struct RedactedRows {
    std::uint64_t rows = 0;
    std::set<std::int64_t> events;
    /// True if there are rows whose event is no whole number, which may count for any event.
    bool hasOtherEvents = false;
};

/// A member of "extra" that was replaced.
struct RedactedMember {
    /// As the redaction file writes it.
    std::string name;
    RedactedRows where;
};

/// A rule whose answer may differ, as it reads what was replaced.
struct AffectedRule {
    std::string rule;
    /// What it reads: "node file /sys/serial", "member USER of event 1001" ...
    std::vector<std::string> reads;
};

/// What a redaction did to a bundle.
struct RedactionReport {
    /// Keys of bundle.json that were replaced ("device.Product").
    std::vector<std::string> bundleKeys;
    /// Node files that were replaced, by their paths in the rule set.
    std::vector<std::string> nodeFiles;
    std::vector<RedactedMember> members;
    /// Texts of "extra" that were replaced as a whole, as they are no JSON objects.
    RedactedRows wholeTexts;
    /// True if a replaced value of the log had a quote, behind which a derived table may run SQL.
    bool hadQuote = false;
    /// Left out of the redacted bundle, because it may contain values that were replaced.
    std::vector<std::string> leftOut;
    /// True if the bundle has an event log, of which derived tables are built.
    bool hasLog = false;
    /// The tables of the derived database that is left out, in lower case.
    std::set<std::string> derivedTables;
    /// What the redaction file names and the bundle doesn't have, or has empty.
    std::vector<std::string> notThere;
    /// Folders of the device whose files are in the bundle as they are.
    std::vector<std::string> keptFolders;
    std::vector<AffectedRule> rules;
};

} // namespace diagnosis

#endif
