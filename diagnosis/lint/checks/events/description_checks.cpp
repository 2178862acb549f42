#include <json/value.h>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/binding_walk.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/cut_sets.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::lint {

namespace {

using rule_source::Children;
using rule_source::DescriptionEntry;
using rule_source::DescriptionItem;
using rule_source::Descriptions;
using rule_source::Element;
using rule_source::EventKind;
using rule_source::RuleSet;
using rule_source::TreeEvent;

/// Calls `visit(section, item)` for each item of the three sections.
template <typename Visit>
void ForEachItem(const RuleSet& rules, Visit visit)
{
    for (const Descriptions* section : {&rules.faultDescriptions, &rules.solutions, &rules.repairs}) {
        for (const DescriptionItem& item : section->items) {
            visit(*section, item);
        }
    }
}

bool HasEntries(const Descriptions& section, std::string_view id)
{
    const DescriptionItem* const item = section.Find(id);
    return item != nullptr && !item->entries.empty();
}

void CheckMissing(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    const CutSets sets(rules.trees);
    for (std::size_t index = 0; index < rules.trees.events.size() && rules.hasRules; ++index) {
        const TreeEvent& event = rules.trees.events[index];
        const bool isReported = event.kind == EventKind::BASIC && sets.MayBeFirst(index) && !event.id.empty();
        if (!isReported || HasEntries(rules.faultDescriptions, event.id)) {
            continue;
        }
        std::string lacks = "a description";
        lacks += HasEntries(rules.solutions, event.id) ? "" : ", a suggestion";
        lacks += HasEntries(rules.repairs, event.id) ? "" : ", a repair";
        report.Add(event.idElement, "the event " + Quoted(event.id) + " may be reported and lacks " + lacks,
            {.help = "add an \"Event\" to \"EventFaultDescriptions\"", .isAboutText = true});
    }
}

void CheckSeveral(const Subject& subject, Report& report)
{
    for (const DescriptionItem& item : subject.rules.faultDescriptions.items) {
        if (item.isKept && item.entries.size() > 1) {
            report.Add(item.entries[1].element, "the event " + Quoted(item.id) + " has a second description");
        }
    }
}

void CheckRepeated(const Subject& subject, Report& report)
{
    ForEachItem(subject.rules, [&report](const Descriptions& section, const DescriptionItem& item) {
        if (item.isReplaced) {
            report.Add(item.element, "the event " + Quoted(item.id) + " has another entry in line "
                    + std::to_string(section.Find(item.id)->element.Line()) + ", which counts instead of this one",
                {.help = "put both into one entry"});
        }
    });
}

void CheckUnreported(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    if (!rules.treeTag) {
        return;
    }
    NearNames ids([&rules](NearNames& near) { AddEventIds(rules, near); });
    ForEachItem(rules, [&](const Descriptions&, const DescriptionItem& item) {
        if (!item.isKept || item.isReplaced || IsPadded(item.id)) {
            return;
        }
        if (item.event == nullptr) {
            report.Add(item.idElement, "no tree has the event " + Quoted(item.id),
                {.near = ids.Find(item.id), .isAboutText = true});
        } else if (item.event->kind == EventKind::INTERMEDIATE) {
            report.Add(item.idElement, "the event " + Quoted(item.id) + " has a gate and is never reported",
                {.help = "describe the basic events below it", .isAboutText = true});
        }
    });
}

void CheckSkipped(const Subject& subject, Report& report)
{
    ForEachItem(subject.rules, [&report](const Descriptions& section, const DescriptionItem& item) {
        if (!item.isKept) {
            report.Add(item.idElement ? item.idElement : item.element, "this entry names no event");
        }
        for (const Element entry : Children(item.list)) {
            const bool isEntry = entry.Name() == section.entryName;
            const bool isOfAnother = !isEntry && (entry.Name() == "description" || entry.Name() == "solution");
            if (isOfAnother) {
                report.Add(entry, Quoted(entry.Name()) + " is no entry of " + Quoted(section.listName),
                    {.help = "write " + Quoted(section.entryName)});
            } else if (isEntry && !entry.Has("id")) {
                report.Add(entry, "this " + Quoted(entry.Name()) + " has no \"id\"");
            }
        }
    });
}

// ---- Repairs. ----

/// Calls `visit(item, entry)` for each repair that counts.
template <typename Visit>
void ForEachRepair(const RuleSet& rules, Visit visit)
{
    for (const DescriptionItem& item : rules.repairs.items) {
        if (item.isKept && !item.isReplaced) {
            for (const DescriptionEntry& entry : item.entries) {
                visit(item, entry);
            }
        }
    }
}

constexpr std::string_view OPERATION = "operation";

// The problem with the "extra" of a repair; empty if it is an object of texts, or no JSON.
std::string TroubleOf(const std::string& extra)
{
    std::string problem;
    const auto json = ParseEngineJson(extra, problem);
    if (!json) {
        return "";
    }
    if (!json->isObject()) {
        return std::string("is ") + JsonKind(*json) + " and no JSON object";
    }
    for (const std::string& id : json->getMemberNames()) {
        if (!(*json)[id].isString()) {
            return "has " + Quoted(id) + " as " + JsonKind((*json)[id]) + " and not as a text with JSON in it";
        }
    }
    return "";
}

void CheckExtras(const Subject& subject, Report& report)
{
    ForEachRepair(subject.rules, [&report](const DescriptionItem&, const DescriptionEntry& entry) {
        const bool isLookedAt = !entry.extra.empty() && entry.extra.find(OPERATION) == std::string_view::npos;
        const std::string trouble = isLookedAt ? TroubleOf(std::string(entry.extra)) : "";
        if (!trouble.empty()) {
            report.Add(entry.element, "the \"extra\" of the repair " + Quoted(entry.id) + " " + trouble,
                {.attribute = entry.element.Find("extra"),
                    .help = "write an object that gives the repair's id a text, which is JSON itself"});
        }
    });
}

void CheckPlainOperations(const Subject& subject, Report& report)
{
    ForEachRepair(subject.rules, [&report](const DescriptionItem&, const DescriptionEntry& entry) {
        if (entry.extra.find(OPERATION) != std::string_view::npos) {
            report.Add(entry.element, "the \"extra\" of the repair " + Quoted(entry.id) + " spells out \"operation\"",
                {.attribute = entry.element.Find("extra"),
                    .help = "write a letter of the inner key as an escape: \"\\u006fperation\""});
        }
    });
}

void CheckQuotes(const Subject& subject, Report& report)
{
    ForEachRepair(subject.rules, [&report](const DescriptionItem&, const DescriptionEntry& entry) {
        if (entry.id.find('\'') != std::string_view::npos) {
            report.Add(entry.element, "the repair id " + Quoted(entry.id) + " has a quote",
                {.attribute = entry.element.Find("id"), .help = "choose an id without quotes"});
        }
    });
}

void CheckSharedRepairs(const Subject& subject, Report& report)
{
    std::map<std::string_view, std::string_view> events;
    ForEachRepair(subject.rules, [&](const DescriptionItem& item, const DescriptionEntry& entry) {
        const auto [first, isNew] = events.emplace(entry.id, item.id);
        if (!isNew && first->second != item.id) {
            report.Add(entry.element, "the repair " + Quoted(entry.id) + " belongs to the event " + Quoted(first->second)
                    + " as well", {.attribute = entry.element.Find("id")});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A901", Severity::WARNING, CheckClass::STATIC, "event without a description",
        "A basic event that may be reported as a root cause and has no entry in \"EventFaultDescriptions\".",
        "an empty description reaches the host", CheckMissing},
    {"A902", Severity::WARNING, CheckClass::STATIC, "more than one description",
        "An event with more than one fault description.", "only the first one reaches the host", CheckSeveral},
    {"A903", Severity::WARNING, CheckClass::STATIC, "event twice in a description section",
        "Two entries with one id in \"EventFaultDescriptions\", \"EventSolutions\" or \"RepairDescriptions\".",
        "the last one counts; they are not put together", CheckRepeated},
    {"A904", Severity::INFO, CheckClass::STATIC, "description of an event that is never reported",
        "An entry of a description section for an event that no tree has, or that has a gate.",
        "no detection hands it out", CheckUnreported},
    {"A905", Severity::WARNING, CheckClass::STATIC, "description that is skipped",
        "An entry of a description section without an \"ID\", an entry of its list without an \"id\", or one with the "
        "word of another section.",
        "it is skipped, without a line in the log", CheckSkipped},
    {"A906", Severity::ERROR, CheckClass::STATIC, "\"extra\" that is no object of texts",
        "The \"extra\" of a repair that is JSON and no object of texts.",
        "no operation is found in it: the host gets the bare repair", CheckExtras},
    {"A907", Severity::WARNING, CheckClass::STATIC, "\"extra\" that spells out \"operation\"",
        "The \"extra\" of a repair with the letters \"operation\".",
        "an extra with these letters counts as one without an operation", CheckPlainOperations},
    {"A911", Severity::ERROR, CheckClass::STATIC, "quote in a repair id", "A repair id with a single quote.",
        "the date of the repair is stored and never found again", CheckQuotes},
    {"A912", Severity::INFO, CheckClass::STATIC, "repair that several events share",
        "A repair id that several events have.",
        "one repair hides what happened to all of these events before it", CheckSharedRepairs},
};

} // namespace

std::span<const Check> DescriptionChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
