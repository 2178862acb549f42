#include "diagnosis/redaction/log_redaction.h"

#include <map>

#include "diagnosis/redaction/extra_text.h"
#include "diagnosis/redaction/log_copy.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis {

namespace {

void Count(const std::optional<std::int64_t>& event, RedactedRows& rows)
{
    ++rows.rows;
    if (event) {
        rows.events.insert(*event);
    } else {
        rows.hasOtherEvents = true;
    }
}

/// Redacts one row after the other, and counts.
class Rows {
public:
    Rows(const Redaction& redaction, RedactionReport& report) : mRedaction(redaction), mReport(report) {}

    std::optional<std::string> Redact(const LoggedExtra& row)
    {
        std::vector<const LogMembers*> members;
        for (const LogMembers& listed : mRedaction.log) {
            // What is no whole number may still be equal to one for the library.
            if (!row.event || listed.HasEvent(*row.event)) {
                members.push_back(&listed);
            }
        }
        RedactedExtra redacted = RedactExtra(row.extra, members, mRedaction.key);
        if (!redacted.IsChanged()) {
            return std::nullopt;
        }
        mReport.hadQuote = mReport.hadQuote || redacted.hadQuote;
        if (redacted.isWhole) {
            Count(row.event, mReport.wholeTexts);
        }
        for (const std::string& name : redacted.members) {
            Count(row.event, mMembers[name]);
        }
        return std::move(redacted.text);
    }

    // In the order of the redaction file, each once.
    void Tell()
    {
        std::set<std::string> told;
        for (const LogMembers& listed : mRedaction.log) {
            for (const auto& [name, given] : listed.names) {
                const auto found = mMembers.find(name);
                if (!told.insert(name).second) {
                    continue;
                }
                if (found == mMembers.end()) {
                    mReport.notThere.push_back("event log: member " + given);
                } else {
                    mReport.members.push_back({given, std::move(found->second)});
                }
            }
        }
    }

private:
    const Redaction& mRedaction;
    RedactionReport& mReport;
    std::map<std::string, RedactedRows> mMembers;
};

} // namespace

std::optional<Failure> RedactLog(const std::string& source, const std::string& target, const Redaction& redaction,
    RedactionReport& report)
{
    Rows rows(redaction, report);
    LogCopy copy;
    auto failure = copy.Run(source, target, [&rows](const LoggedExtra& row) { return rows.Redact(row); });
    if (failure) {
        return failure;
    }
    report.hasLog = true;
    rows.Tell();
    if (copy.OtherTables() != 0) {
        report.leftOut.push_back("other tables of the event log: " + std::to_string(copy.OtherTables()));
    }
    return std::nullopt;
}

void LeaveDerivedDatabaseOut(const std::string& path, RedactionReport& report)
{
    report.leftOut.emplace_back("the derived database of an earlier run");
    ReadOnlyDatabase database;
    if (database.Open(path, FailureCode::BAD_LOG)) {
        return;
    }
    auto table = database.Get().Prepare("SELECT name FROM sqlite_master WHERE type IN ('table', 'view')");
    while (table && table->Step()) {
        report.derivedTables.insert(LowerLetters(table->Text(0)));
    }
}

} // namespace diagnosis
