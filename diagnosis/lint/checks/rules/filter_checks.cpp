#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Rule;

void CheckScenes(const Subject& subject, Report& report)
{
    for (const Rule* rule : subject.rules.rules.all) {
        if (rule->isKept && rule->detectScene.empty()) {
            report.Add(rule->element, "the rule " + Quoted(rule->name) + " names no scene",
                {.attribute = rule->element.Find("detectScene"), .help = "name its scenes in \"detectScene\""});
        }
    }
}

void CheckNames(const Subject& subject, Report& report)
{
    for (const Rule* rule : subject.rules.rules.all) {
        if (rule->name.empty()) {
            report.Add(rule->element, "this " + std::string(rule->element.Name()) + " has no name",
                {.attribute = rule->element.Find("name"), .help = "give it a \"name\" that an event asks for"});
        }
    }
}

void CheckRepeatedNames(const Subject& subject, Report& report)
{
    for (const Rule* rule : subject.rules.rules.all) {
        if (rule->isReplaced) {
            const Rule& last = *subject.rules.rules.Find(rule->name);
            report.Add(rule->element, "the rule " + Quoted(rule->name) + " is defined again in line "
                    + std::to_string(last.element.Line()) + ", which takes the place of this one",
                {.attribute = rule->element.Find("name"), .help = "give each rule a name of its own"});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A401", Severity::ERROR, CheckClass::STATIC, "rule without a scene",
        "A rule whose \"detectScene\" is missing or empty.",
        "the rule is rejected in every detection: other filters let all in when they are empty, this one none",
        CheckScenes},
    {"A404", Severity::ERROR, CheckClass::STATIC, "rule without a name",
        "A rule whose \"name\" is missing or empty.", "it is read and dropped, without a line in the log", CheckNames},
    {"A405", Severity::WARNING, CheckClass::STATIC, "two rules with one name",
        "Two rules of any family with one name.",
        "the later one is asked by all events; a code rule that is replaced still answers the host's question whether "
        "its code would run", CheckRepeatedNames},
};

} // namespace

std::span<const Check> FilterChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
