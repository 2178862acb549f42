#include "diagnosis/bundle/repairs.h"

#include <algorithm>

#include "arborist/frame/repair.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

// Warns of an id that the rule set doesn't name: with a misspelt id the repair would have no effect, silently.
void WarnOfUnknownRepair(const BundleSession& session, const std::string& id, std::vector<Warning>& warnings)
{
    const RuleSetSummary ruleSet = SummariseRuleSet(session.GetBundle());
    const std::vector<std::string>& known = ruleSet.repairIds;
    const bool isWhole = ruleSet.isTreeFileRead && ruleSet.isRuleFileRead;
    if (!isWhole || std::find(known.begin(), known.end(), id) != known.end()) {
        return;
    }
    // The operation word behind an id is easily forgotten.
    const auto longer = std::find_if(known.begin(), known.end(),
        [&](const std::string& candidate) { return candidate.rfind(id + "_", 0) == 0; });
    warnings.push_back({WarningCode::UNKNOWN_REPAIR, "no event of the rule set names the repair \"" + id + "\""
        + (longer == known.end() ? DidYouMean(id, known) : "; did you mean \"" + *longer + "\"?")});
}

// UpdateRepairDb returns nothing, so read the record back and compare its date: an old record may have remained.
std::optional<Failure> Record(const BundleSession& session, const std::string& id, RepairReport& report)
{
    const std::string path = session.ProgramDataPath(REPAIR_RECORDS);
    const std::string earliest = FormatMoment(session.Now()).value_or("");
    UpdateRepairDb(id);
    std::vector<RepairRecord> records;
    if (auto failure = ReadRepairRecords(path, records)) {
        return failure;
    }
    const auto record = std::find_if(records.begin(), records.end(),
        [&](const RepairRecord& candidate) { return candidate.id == id && candidate.date >= earliest; });
    if (record == records.end()) {
        return Failure{FailureCode::REPAIR_NOT_RECORDED, path + ": the repair was not recorded; the library's log tells why"};
    }
    report.records.push_back(*record);
    WarnOfUnknownRepair(session, id, report.warnings);
    return std::nullopt;
}

template <typename Work>
RepairReport WithSession(const BundlePath& bundle, const BundleOverrides& overrides, BundleUse use, Work work)
{
    RepairReport report;
    report.bundle = bundle.given;
    BundleSession session;
    report.failure = session.Enter(bundle, overrides, use);
    if (!report.failure) {
        report.warnings = session.GetWarnings();
        report.failure = work(session, report);
        if (report.failure) {
            report.failure->message = session.Shown(report.failure->message);
            report.records.clear();
        }
    }
    return report;
}

} // namespace

RepairReport RecordRepair(const BundlePath& bundle, const std::string& id, const BundleOverrides& overrides)
{
    return WithSession(bundle, overrides, BundleUse::RECORD,
        [&](const BundleSession& session, RepairReport& report) { return Record(session, id, report); });
}

RepairReport ListRepairs(const BundlePath& bundle, const BundleOverrides& overrides)
{
    return WithSession(bundle, overrides, BundleUse::RUN, [](const BundleSession& session, RepairReport& report) {
        return ReadRepairRecords(session.ProgramDataPath(REPAIR_RECORDS), report.records);
    });
}

} // namespace diagnosis
