#include <algorithm>
#include <array>
#include <map>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/device_filter.h"
#include "diagnosis/lint/reading/entry_overlap.h"
#include "diagnosis/lint/reading/filters.h"

namespace diagnosis::lint {

namespace {

using rule_source::Rule;

// ---- Entries that are part of others. ----

struct Filter {
    std::string_view Rule::*field;
    const char* name;
    /// Filters of one kind are compared with the same text of the device.
    std::size_t kind;
};

constexpr std::array<Filter, 5> FILTERS = {{{&Rule::detectScene, "detectScene", 0}, {&Rule::production, "production", 1},
    {&Rule::blackProducts, "blackProducts", 1}, {&Rule::platform, "platform", 2},
    {&Rule::deviceType, "deviceType", 3}}};
constexpr std::size_t KINDS = 4;

/// Calls `visit(rule, filter)` for each filter of rules that are kept.
template <typename Visit>
void ForEachFilter(const Subject& subject, Visit visit)
{
    for (const Rule* rule : subject.rules.rules.all) {
        for (const Filter& filter : FILTERS) {
            if (rule->isKept && !(rule->*filter.field).empty()) {
                visit(*rule, filter);
            }
        }
    }
}

void CheckOverlaps(const Subject& subject, Report& report)
{
    std::array<EntryOverlap, KINDS> overlaps;
    ForEachFilter(subject,
        [&](const Rule& rule, const Filter& filter) { overlaps[filter.kind].Add(rule.*filter.field); });
    ForEachFilter(subject, [&](const Rule& rule, const Filter& filter) {
        const auto& [entry, part] = overlaps[filter.kind].Find(rule.*filter.field);
        if (!part.empty()) {
            report.Add(rule.element, "the rule " + Quoted(rule.name) + " lists " + Quoted(entry) + " in "
                    + Quoted(filter.name) + ", of which " + Quoted(part) + " is a part",
                {.attribute = rule.element.Find(filter.name),
                    .help = "choose entries of which none is a part of another, such as scenes of equal length"});
        }
    });
}

// ---- Products that are listed and black. ----

void CheckBlackProducts(const Subject& subject, Report& report)
{
    for (const Rule* rule : subject.rules.rules.all) {
        if (rule->isKept && HasAllEntries(rule->production, rule->blackProducts)) {
            report.Add(rule->element, "the rule " + Quoted(rule->name) + " has all its products on its black list, too",
                {.attribute = rule->element.Find("blackProducts")});
        }
    }
}

// ---- Devices that are known. ----

// The filter that no device passes; "filters" if it is not the same one for all; empty if a device passes.
std::string_view PassedByNone(const Rule& rule, const std::vector<DeviceProfile>& devices)
{
    std::string_view rejectedBy;
    for (const DeviceProfile& device : devices) {
        const char* const filter = RejectedBy(rule, device);
        if (filter == nullptr) {
            return {};
        }
        rejectedBy = rejectedBy.empty() || rejectedBy == filter ? filter : "filters";
    }
    return rejectedBy;
}

// Another check reports rules without a scene.
void CheckDevices(const Subject& subject, Report& report)
{
    std::map<std::array<std::string_view, FILTERS.size()>, std::string_view> known;
    for (const Rule* rule : subject.rules.rules.all) {
        if (!rule->isKept || rule->detectScene.empty()) {
            continue;
        }
        const auto [found, isNew] = known.try_emplace(
            {rule->detectScene, rule->production, rule->blackProducts, rule->platform, rule->deviceType});
        if (isNew) {
            found->second = PassedByNone(*rule, *subject.devices);
        }
        if (const std::string_view filter = found->second; !filter.empty()) {
            report.Add(rule->element, "no device of the profiles passes "
                    + (filter == "filters" ? "the filters" : Quoted(filter)) + " of the rule " + Quoted(rule->name),
                {.attribute = rule->element.Find(std::string(filter).c_str())});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A402", Severity::WARNING, CheckClass::STATIC, "entry of a filter that is part of another",
        "An entry of \"detectScene\", \"production\", \"blackProducts\", \"platform\" or \"deviceType\" of which another "
        "entry, in any rule, is a part: 1 in 12, AB in ABC.",
        "the device's text is looked for anywhere in the filter, which is no list: every part of an entry is found as well",
        CheckOverlaps},
    {"A403", Severity::WARNING, CheckClass::STATIC, "products that are all on the black list",
        "A rule with every entry of \"production\" in \"blackProducts\".", "the rule is rejected on every device",
        CheckBlackProducts},
    {"A406", Severity::WARNING, CheckClass::DEVICE, "filter that no known device passes",
        "A rule whose filters turn away every device of the profiles. A filter on something that the profile lacks turns nothing away.",
        "the rule is rejected on all these devices", CheckDevices},
};

} // namespace

std::span<const Check> DeviceFilterChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
