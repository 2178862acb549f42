#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/binding_walk.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Binding;
using rule_source::Descriptions;
using rule_source::Element;
using rule_source::EventKind;
using rule_source::Rule;
using rule_source::RuleName;
using rule_source::RuleSet;
using rule_source::SectionKind;
using rule_source::TreeEvent;

void ReportPadded(Element element, const std::string& what, Report& report)
{
    report.Add(element, what + " has blanks around it",
        {.help = "remove them", .fix = FixOf::Text(std::string(Trimmed(element.Text())), false), .isAboutText = true});
}

// Finds names and ids that match nothing because of blanks around them.
void CheckBlanks(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    for (const TreeEvent& event : rules.trees.events) {
        if (event.binding == nullptr && IsPadded(event.id)) {
            ReportPadded(event.idElement, "the id of the event " + Quoted(Trimmed(event.id)), report);
        }
    }
    for (const Binding& binding : rules.bindings.all) {
        if (binding.event == nullptr && IsPadded(binding.id)) {
            ReportPadded(binding.idElement, "the id " + Quoted(Trimmed(binding.id)), report);
        }
    }
    for (const Descriptions* section : {&rules.faultDescriptions, &rules.solutions, &rules.repairs}) {
        for (const auto& item : section->items) {
            if (item.event == nullptr && IsPadded(item.id)) {
                ReportPadded(item.idElement, "the id " + Quoted(Trimmed(item.id)), report);
            }
        }
    }
}

void CheckBlanksOfRules(const RuleSet& rules, Report& report)
{
    std::unordered_set<const Rule*> named;
    ForEachRuleName(rules, [&](const Binding&, const RuleName& name) {
        named.insert(name.rule);
        if (name.rule == nullptr && IsPadded(name.name)) {
            ReportPadded(name.element, "the rule name " + Quoted(Trimmed(name.name)), report);
        }
    });
    for (const Rule* rule : rules.rules.all) {
        if (rule->isKept && IsPadded(rule->name) && named.count(rule) == 0) {
            report.Add(rule->element, "the name of the rule " + Quoted(Trimmed(rule->name)) + " has blanks around it",
                {.attribute = rule->element.Find("name"),
                    .help = "remove them",
                    .fix = FixOf::Value(std::string(Trimmed(rule->name)), false)});
        }
    }
}

void CheckAllBlanks(const Subject& subject, Report& report)
{
    CheckBlanks(subject, report);
    CheckBlanksOfRules(subject.rules, report);
}

// True for an event that is left to the host.
bool IsInteractive(const TreeEvent& event)
{
    return event.detectMode.Text() == "2";
}

/// Finds the entry that was probably meant for an event, among those for no event.
class NearEntries {
public:
    explicit NearEntries(const RuleSet& rules)
        : mIds([this, &rules](NearNames& near) {
              for (const Binding& binding : rules.bindings.all) {
                  if (binding.event == nullptr && !binding.isReplaced && mEntries.emplace(binding.id, &binding).second) {
                      near.Add(binding.id);
                  }
              }
          })
    {
    }
    NearEntries(const NearEntries&) = delete;
    NearEntries& operator=(const NearEntries&) = delete;

    /// Null if none is near.
    const Binding* Find(std::string_view event)
    {
        const auto entry = mEntries.find(mIds.Find(event));
        return entry == mEntries.end() ? nullptr : entry->second;
    }

private:
    std::unordered_map<std::string_view, const Binding*> mEntries;
    NearNames mIds;
};

void CheckEventsWithoutRules(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    if (!HasSection(rules, SectionKind::EVENT_RULES)) {
        return;
    }
    NearEntries entries(rules);
    for (const TreeEvent& event : rules.trees.events) {
        if (event.kind != EventKind::BASIC || event.id.empty() || IsInteractive(event)) {
            continue;
        }
        if (event.binding == nullptr) {
            const Binding* const near = entries.Find(event.id);
            report.Add(event.idElement, "no entry of \"EventRules\" is for the event " + Quoted(event.id),
                near == nullptr ? Details{.isAboutText = true}
                                : Details{.help = DidYouMean(std::string(near->id)),
                                      .fix = FixOf::TextOf(near->idElement, std::string(event.id)),
                                      .isAboutText = true}); // the entry is renamed, as it may be the only one
        } else if (event.binding->alternatives.empty()) {
            report.Add(event.binding->element, "the entry of the event " + Quoted(event.id) + " names no rule");
        }
    }
}

void CheckUnknownRules(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    if (!HasSection(rules, SectionKind::RULE_LIST)) {
        return;
    }
    NearNames names([&rules](NearNames& near) {
        for (const auto& [name, rule] : rules.rules.byName) {
            near.Add(name);
        }
    });
    ForEachRuleName(rules, [&](const Binding& binding, const RuleName& name) {
        if (name.rule != nullptr || IsPadded(name.name) || name.name.find(RULE_NAME_COMMA) != std::string_view::npos) {
            return; // other checks report the last two
        }
        report.Add(name.element,
            "the event " + Quoted(binding.id) + " asks for the rule " + Quoted(name.name) + ", which is not there",
            {.near = names.Find(name.name), .isAboutText = true});
    });
}

void CheckRepeatedEntries(const Subject& subject, Report& report)
{
    const auto& bindings = subject.rules.bindings;
    for (const Binding& binding : bindings.all) {
        if (binding.isReplaced) {
            const Binding& last = *bindings.Find(binding.id);
            report.Add(binding.element, "the event " + Quoted(binding.id) + " has another entry in line "
                    + std::to_string(last.element.Line()) + ", which takes the place of this one",
                {.help = "put the alternatives of both into one entry"});
        }
    }
}

void CheckEntriesWithoutEvents(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    if (!rules.treeTag) {
        return;
    }
    NearNames ids([&rules](NearNames& near) { AddEventIds(rules, near); });
    for (const Binding& binding : rules.bindings.all) {
        if (binding.isKept && !binding.isReplaced && binding.event == nullptr && !IsPadded(binding.id)) {
            report.Add(binding.idElement, "no tree has the event " + Quoted(binding.id),
                {.near = ids.Find(binding.id), .isAboutText = true});
        }
    }
}

// A name with a comma names no rule, but its parts may.
void AddParts(const RuleSet& rules, std::string_view name, std::unordered_set<const Rule*>& named)
{
    for (std::size_t start = 0; start < name.size();) {
        const std::size_t comma = std::min(name.find(RULE_NAME_COMMA, start), name.size());
        named.insert(rules.rules.Find(name.substr(start, comma - start)));
        start = comma + 1;
    }
}

void CheckUnnamedRules(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    if (!HasSection(rules, SectionKind::EVENT_RULES)) {
        return;
    }
    std::unordered_set<const Rule*> named;
    ForEachRuleName(rules, [&](const Binding&, const RuleName& name) {
        named.insert(name.rule);
        if (name.rule == nullptr) {
            AddParts(rules, name.name, named);
        }
    });
    for (const Rule* rule : rules.rules.all) {
        if (rule->isKept && !rule->isReplaced && !IsPadded(rule->name) && named.count(rule) == 0) {
            report.Add(rule->element, "no event asks for the rule " + Quoted(rule->name),
                {.attribute = rule->element.Find("name")});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A211", Severity::ERROR, CheckClass::STATIC, "blanks around an id or a rule name",
        "An id or a rule name that begins or ends with a blank, a tab or a line end and matches nothing for it. Spaces "
        "around an id of the tree file are allowed.",
        "the tree file strips spaces only and the rule file nothing, so that the two sides do not match",
        CheckAllBlanks},
    {"A301", Severity::WARNING, CheckClass::STATIC, "basic event without rules",
        "A basic event for which \"EventRules\" has no entry, or one without rules. Events with the detect mode \"2\" "
        "are left to the host and need none.",
        "the event is FALSE for ever", CheckEventsWithoutRules},
    {"A302", Severity::INFO, CheckClass::STATIC, "event rules for no event",
        "An entry of \"EventRules\" for an id that no tree has.", "nothing asks for it", CheckEntriesWithoutEvents},
    {"A303", Severity::ERROR, CheckClass::STATIC, "rule name that no rule has",
        "A \"Rule-name\" for which \"RuleList\" has no rule. Names are compared with case.",
        "the rule counts as not fired, without a line in the log", CheckUnknownRules},
    {"A304", Severity::WARNING, CheckClass::STATIC, "two entries for one event",
        "Two \"Event\" entries of \"EventRules\" with one id.",
        "the later entry takes the place of the earlier; their rules are not put together", CheckRepeatedEntries},
    {"A309", Severity::INFO, CheckClass::STATIC, "rule that no event asks for",
        "A rule that no entry of \"EventRules\" names.",
        "it is never asked; for the code of a code rule there are no descriptions, suggestions and repairs",
        CheckUnnamedRules},
};

} // namespace

std::span<const Check> BindingChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
