#include <algorithm>
#include <set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/binding_walk.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/filters.h"

namespace diagnosis::lint {

namespace {

using rule_source::Binding;
using rule_source::BindingAlternative;
using rule_source::Element;
using rule_source::Rule;
using rule_source::RuleName;
using rule_source::RuleSet;

std::string TroubleOf(const BindingAlternative& alternative)
{
    using Kind = BindingAlternative::Kind;
    switch (alternative.kind) {
    case Kind::DROPPED:
        return "has no type";
    case Kind::UNKNOWN:
        return "has the unknown type " + Quoted(alternative.element.Value("type"));
    default:
        return alternative.names.empty() ? "names no rule" : "";
    }
}

std::string NearTypeOf(const BindingAlternative& alternative)
{
    const bool isUnknown = alternative.kind == BindingAlternative::Kind::UNKNOWN;
    return isUnknown ? NearNames{"singleRule", "multipleRule"}.Find(alternative.element.Value("type")) : "";
}

void CheckAlternatives(const Subject& subject, Report& report)
{
    ForEachAlternative(subject.rules, [&report](const Binding& binding, const BindingAlternative& alternative) {
        const std::string trouble = TroubleOf(alternative);
        if (!trouble.empty()) {
            report.Add(alternative.element, "an alternative of the event " + Quoted(binding.id) + " " + trouble,
                {.attribute = alternative.element.Find("type"),
                    .help = "write type=\"singleRule\" with a \"Rule\", or type=\"multipleRule\" with an \"and\" of "
                            "several",
                    .near = NearTypeOf(alternative)});
        }
    });
}

void CheckUnreadNames(const Subject& subject, Report& report)
{
    ForEachAlternative(subject.rules, [&report](const Binding& binding, const BindingAlternative& alternative) {
        const bool isSingle = alternative.kind == BindingAlternative::Kind::SINGLE;
        const Element second = isSingle ? alternative.element.FirstChild("Rule").Next("Rule") : Element();
        if (second) {
            report.Add(second, "an alternative of the event " + Quoted(binding.id) + " is a single rule and has another",
                {.help = "give each rule an \"or\" of its own, or make them a \"multipleRule\" that all must hold"});
        }
        const Element parent = isSingle ? alternative.element : alternative.element.FirstChild("and");
        for (const Element rule : rule_source::Children(parent, "Rule")) {
            if (const Element name = rule.FirstChild("Rule-name").Next("Rule-name")) {
                report.Add(name, "a \"Rule\" of the event " + Quoted(binding.id) + " has a second name",
                    {.help = "give each name a \"Rule\" of its own", .isAboutText = true});
            }
        }
    });
}

void CheckCommas(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    ForEachRuleName(rules, [&report](const Binding& binding, const RuleName& name) {
        if (name.name.find(RULE_NAME_COMMA) != std::string_view::npos) {
            report.Add(name.element, "the event " + Quoted(binding.id) + " asks for the rule " + Quoted(name.name)
                    + ", whose name has a comma",
                {.help = "give the rule a name without commas", .isAboutText = true});
        }
    });
    for (const Rule* rule : rules.rules.all) {
        if (rule->name.find(RULE_NAME_COMMA) != std::string_view::npos) {
            report.Add(rule->element, "the name of the rule " + Quoted(rule->name) + " has a comma",
                {.attribute = rule->element.Find("name"), .help = "give the rule a name without commas"});
        }
    }
}

using Names = std::set<std::string_view>;

Names NamesOf(const BindingAlternative& alternative)
{
    Names names;
    for (const RuleName& name : alternative.names) {
        names.insert(name.name);
    }
    return names;
}

// True if another alternative is true whenever this one is.
bool IsRedundant(const std::vector<Names>& all, std::size_t own)
{
    for (std::size_t other = 0; other < all.size(); ++other) {
        const bool isPart = other != own && !all[other].empty()
            && std::includes(all[own].begin(), all[own].end(), all[other].begin(), all[other].end());
        // Of two equal ones the later is redundant.
        if (isPart && (all[other].size() < all[own].size() || other < own)) {
            return true;
        }
    }
    return false;
}

void CheckRedundant(const Subject& subject, Report& report)
{
    static constexpr std::size_t MOST_ALTERNATIVES = 64; // each is compared with all others
    for (const Binding& binding : subject.rules.bindings.all) {
        if (!binding.isKept || binding.isReplaced || binding.alternatives.size() > MOST_ALTERNATIVES) {
            continue;
        }
        std::vector<Names> all;
        for (const BindingAlternative& alternative : binding.alternatives) {
            all.push_back(NamesOf(alternative));
        }
        for (std::size_t index = 0; index < all.size(); ++index) {
            if (!all[index].empty() && IsRedundant(all, index)) {
                report.Add(binding.alternatives[index].element,
                    "an alternative of the event " + Quoted(binding.id) + " adds nothing to another one");
            } else if (all[index].size() < binding.alternatives[index].names.size()) {
                report.Add(binding.alternatives[index].element,
                    "an alternative of the event " + Quoted(binding.id) + " names a rule twice");
            }
        }
    }
}

// ---- Groups that are never true. ----

// The filters of two rules that no device and scene passes together; empty if some may.
std::string Conflict(const Rule& one, const Rule& other)
{
    if (!HaveCommonScene(one.detectScene, other.detectScene)) {
        return "detectScene";
    }
    for (const auto& [field, name] : {std::pair(&Rule::production, "production"), {&Rule::platform, "platform"},
             {&Rule::deviceType, "deviceType"}}) {
        if (!HaveCommonEntry(one.*field, other.*field)) {
            return name;
        }
    }
    const bool isBlack =
        HasAllEntries(one.production, other.blackProducts) || HasAllEntries(other.production, one.blackProducts);
    return isBlack ? "blackProducts" : "";
}

// Compares each rule of a group with the first only: comparing all pairs could take for ever on a foreign rule set.
std::string ConflictIn(const BindingAlternative& alternative)
{
    const Rule* first = nullptr;
    for (const RuleName& name : alternative.names) {
        const Rule* const rule = name.rule;
        // Another check reports a rule without scenes.
        if (rule == nullptr || rule->detectScene.empty()) {
            continue;
        }
        const std::string conflict = first == nullptr ? "" : Conflict(*first, *rule);
        if (!conflict.empty()) {
            return "the rules " + Quoted(first->name) + " and " + Quoted(rule->name) + " exclude each other by "
                + Quoted(conflict);
        }
        first = first == nullptr ? rule : first;
    }
    return "";
}

void CheckExclusiveGroups(const Subject& subject, Report& report)
{
    ForEachAlternative(subject.rules, [&report](const Binding& binding, const BindingAlternative& alternative) {
        const std::string conflict = alternative.kind == BindingAlternative::Kind::GROUP
            ? ConflictIn(alternative)
            : "";
        if (!conflict.empty()) {
            report.Add(alternative.element, "a group of the event " + Quoted(binding.id) + " never holds: " + conflict);
        }
    });
}

constexpr Check CHECKS[] = {
    {"A305", Severity::ERROR, CheckClass::STATIC, "alternative that never holds",
        "An \"or\" of \"EventRules\" without a type or with an unknown one, or without a rule name.",
        "it is dropped, or kept and never true", CheckAlternatives},
    {"A306", Severity::WARNING, CheckClass::STATIC, "rule name that is not read",
        "A \"singleRule\" with more than one \"Rule\", or a \"Rule\" with more than one \"Rule-name\".",
        "only the first one is read", CheckUnreadNames},
    {"A307", Severity::ERROR, CheckClass::STATIC, "comma in a rule name",
        "A rule name with a comma, at the rule or where an event asks for it.",
        "the name is split at the comma, and the parts are looked for as a group of rules", CheckCommas},
    {"A308", Severity::INFO, CheckClass::STATIC, "alternative that adds nothing",
        "An alternative of an event that is true only if another one is, too, or one that names a rule twice.",
        "it is asked in vain, and the result of a group may be stored with another alternative that has its names",
        CheckRedundant},
    {"A310", Severity::WARNING, CheckClass::STATIC, "group whose rules exclude each other",
        "A \"multipleRule\" of rules whose filters no one device and scene passes: without a common scene, product, "
        "platform or device type, or with all products of one on the black list of another.",
        "one of its rules is always rejected, and the group never holds", CheckExclusiveGroups},
};

} // namespace

std::span<const Check> AlternativeChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
