#include <map>
#include <set>
#include <unordered_map>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/binding_walk.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Binding;
using rule_source::CodeRule;
using rule_source::Family;
using rule_source::Rule;
using rule_source::RuleName;

void CheckDetectInfo(const Subject& subject, Report& report)
{
    for (const CodeRule& rule : subject.rules.rules.codeRules) {
        if (!rule.detectInfo) {
            report.Add(rule.element, "the code rule " + Quoted(rule.name) + " has no \"detectInfo\"",
                {.help = "add <detectInfo id=\"...\"/> with the code that the host runs"});
        }
    }
}

/// Finds codes that are contained in others, by looking up all pieces of a code with the lengths of other codes.
class ContainedCodes {
public:
    explicit ContainedCodes(const std::deque<CodeRule>& rules)
    {
        for (const CodeRule& rule : rules) {
            if (rule.isKept && !rule.code.empty()) {
                mRules.emplace(rule.code, &rule);
                mLengths.insert(rule.code.size());
            }
        }
    }

    /// A rule whose code is a part of this one's; null if there is none.
    const CodeRule* PartOf(const CodeRule& rule)
    {
        for (const std::size_t length : mLengths) {
            for (std::size_t start = 0; length < rule.code.size() && start + length <= rule.code.size(); ++start) {
                if (++mLooked > MOST_LOOKED_FOR) {
                    return nullptr;
                }
                const auto part = mRules.find(rule.code.substr(start, length));
                if (part != mRules.end()) {
                    return part->second;
                }
            }
        }
        return nullptr;
    }

private:
    static constexpr std::size_t MOST_LOOKED_FOR = 5'000'000;

    std::map<std::string_view, const CodeRule*> mRules;
    std::set<std::size_t> mLengths;
    std::size_t mLooked = 0;
};

void CheckContainedCodes(const Subject& subject, Report& report)
{
    ContainedCodes codes(subject.rules.rules.codeRules);
    for (const CodeRule& rule : subject.rules.rules.codeRules) {
        const CodeRule* const part = rule.isKept ? codes.PartOf(rule) : nullptr;
        if (part != nullptr) {
            report.Add(rule.detectInfo, "the code " + Quoted(rule.code) + " contains the code " + Quoted(part->code)
                    + " of the rule " + Quoted(part->name),
                {.attribute = rule.detectInfo.Find("id"), .help = "choose codes of which none is a part of another"});
        }
    }
}

void CheckSharedRules(const Subject& subject, Report& report)
{
    std::unordered_map<const Rule*, std::string_view> events;
    ForEachRuleName(subject.rules, [&](const Binding& binding, const RuleName& name) {
        if (name.rule == nullptr || name.rule->family != Family::CODE || binding.event == nullptr) {
            return;
        }
        const auto [first, isNew] = events.emplace(name.rule, binding.id);
        if (!isNew && first->second != binding.id) {
            report.Add(name.element, "the code rule " + Quoted(name.name) + " is asked for by the event "
                    + Quoted(first->second) + " as well",
                {.help = "give each event a code rule of its own", .isAboutText = true});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A908", Severity::ERROR, CheckClass::STATIC, "code rule without a code", "A \"codeRule\" without \"detectInfo\".",
        "the rule is dropped, without a line in the log", CheckDetectInfo},
    {"A909", Severity::WARNING, CheckClass::STATIC, "code that is a part of another",
        "A detect code that contains the code of another rule.",
        "asked whether the shorter code would run, the engine answers for the first rule of the file whose code contains it",
        CheckContainedCodes},
    {"A910", Severity::WARNING, CheckClass::STATIC, "code rule of two events",
        "A code rule that two events ask for.",
        "the host gets the descriptions, suggestions and repairs of the event that comes first in the trees, for both",
        CheckSharedRules},
};

} // namespace

std::span<const Check> CodeRuleChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
