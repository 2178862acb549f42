#include <filesystem>

#include "diagnosis/lint/base/event_counts.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::NodeInfo;
using rule_source::NodeRule;

std::string Ids(const rule_source::IdRange& ids)
{
    return ids.first == ids.last ? "the event " + std::to_string(ids.first)
                                 : "the events " + std::to_string(ids.first) + " to " + std::to_string(ids.last);
}

void CheckEventsOfLog(const Subject& subject, Report& report)
{
    if (subject.counts == nullptr) {
        return;
    }
    for (const AlarmRule& rule : subject.rules.rules.alarmRules) {
        for (const AlarmItem& item : rule.items) {
            const bool isAsked = rule.isKept && !item.ids.IsEmpty();
            if (isAsked && !subject.counts->HasAny(item.ids.first, item.ids.last)) {
                report.Add(item.element, "the log has no row of " + Ids(item.ids) + ", which the rule "
                        + Quoted(rule.name) + " counts", {.attribute = item.element.Find("Eventid_Max")});
            }
        }
    }
}

// A relative path lies in the folder in which a detection runs, here in that of the device as well.
bool IsThere(const std::string& root, std::string_view path)
{
    std::error_code error;
    return std::filesystem::exists(root + "/" + std::string(path), error);
}

void CheckNodePaths(const Subject& subject, Report& report)
{
    if (subject.deviceRoot.empty()) {
        return;
    }
    for (const NodeRule& rule : subject.rules.rules.nodeRules) {
        for (const NodeInfo& node : rule.nodes) {
            if (rule.isKept && !IsThere(subject.deviceRoot, node.path)) {
                report.Add(node.element, "the device has no file " + Quoted(node.path) + ", which the rule "
                        + Quoted(rule.name) + " reads", {.attribute = node.element.Find("path")});
            }
        }
    }
}

constexpr Check CHECKS[] = {
    {"A515", Severity::INFO, CheckClass::HOST, "events that the log does not have",
        "An \"alarmId\" of a rule for whose events the log of --log has no row.", "nothing is counted on this device",
        CheckEventsOfLog},
    {"A714", Severity::WARNING, CheckClass::HOST, "node file that the device does not have",
        "A \"nodeInfo\" whose path is not there below the folder of --device-root.",
        "the value is empty and counts as 0 in a formula, so that a test for a low value fires", CheckNodePaths},
};

} // namespace

std::span<const Check> HostChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
