#include <algorithm>
#include <cstdint>
#include <limits>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/cut_sets.h"

namespace diagnosis::lint {

namespace {

using rule_source::EventKind;
using rule_source::GateKind;
using rule_source::Tree;
using rule_source::TreeEvent;
using rule_source::Trees;

// Reports gates with two or more children of which some, but not all, are undeveloped.
void CheckUndevelopedUnderAnd(const Subject& subject, Report& report)
{
    const Trees& trees = subject.rules.trees;
    for (std::size_t index = 0; index < trees.events.size(); ++index) {
        const TreeEvent& event = trees.events[index];
        if (event.gateKind != GateKind::AND) {
            continue;
        }
        std::size_t undeveloped = 0;
        std::size_t others = 0;
        trees.ForEachChild(index, [&](std::size_t child) {
            ++(trees.events[child].kind == EventKind::UNDEVELOPED ? undeveloped : others);
        });
        if (undeveloped > 0 && others > 0) {
            report.Add(event.gate, "the AND gate of the event " + Quoted(event.id)
                    + " has undeveloped events beside others",
                {.help = "put the undeveloped events last: then a child that is FALSE decides"});
        }
    }
}

void CheckChildrenWithoutSets(const Subject& subject, Report& report)
{
    const Trees& trees = subject.rules.trees;
    const CutSets sets(trees);
    for (std::size_t index = 0; index < trees.events.size(); ++index) {
        if (trees.events[index].gateKind != GateKind::AND) {
            continue;
        }
        trees.ForEachChild(index, [&](std::size_t child) {
            const TreeEvent& event = trees.events[child];
            if (event.kind == EventKind::INTERMEDIATE && sets.Number(child) == 0) {
                report.Add(event.element, "the event " + Quoted(event.id) + " under an AND gate has nothing below it",
                    {.help = "give it a basic event, or take it out of the gate"});
            }
        });
    }
}

void CheckNumberOfSets(const Subject& subject, Report& report)
{
    static constexpr std::uint64_t MANY = 10'000;
    const Trees& trees = subject.rules.trees;
    const CutSets sets(trees);
    for (const Tree& tree : trees.trees) {
        const std::uint64_t number = tree.isKept ? sets.Number(tree.begin) : 0;
        if (number > MANY) {
            const bool isKnown = number < CutSets::COUNTLESS;
            report.Add(tree.element, "the tree " + Quoted(tree.id) + " has "
                    + (isKnown ? std::to_string(number) : "more than " + std::to_string(CutSets::COUNTLESS))
                    + " combinations of basic events",
                {.help = "an AND over several ORs multiplies their children: ask for less below the AND"});
        }
    }
}

void CheckLeavesInSecondPlace(const Subject& subject, Report& report)
{
    const Trees& trees = subject.rules.trees;
    const CutSets sets(trees);
    for (std::size_t index = 0; index < trees.events.size(); ++index) {
        const TreeEvent& event = trees.events[index];
        if (event.kind == EventKind::BASIC && !sets.MayBeFirst(index)) {
            report.Add(event.element, "the event " + Quoted(event.id) + " is never the first one of a combination",
                {.help = "put the event that is to be reported first in its AND gate"});
        }
    }
}

void CheckRulesOfIntermediateEvents(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.kind == EventKind::INTERMEDIATE && event.binding != nullptr && !event.id.empty()) {
            report.Add(event.binding->element, "the event " + Quoted(event.id) + " has a gate and rules of its own",
                {.help = "give the rules to a basic event, or be sure that they are true whenever something below is"});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A212", Severity::WARNING, CheckClass::STATIC, "undeveloped event under an AND gate",
        "An AND gate with undeveloped events beside others.",
        "the first child that is FALSE or UNKNOWN decides: their order makes the gate FALSE or UNKNOWN",
        CheckUndevelopedUnderAnd},
    {"A213", Severity::WARNING, CheckClass::STATIC, "AND gate with a child that has nothing below it",
        "An intermediate event under an AND gate that no combination of basic events makes true: it has no gate, or an "
        "empty one.",
        "the combinations that were gathered before it are dropped, and those of the children after it count without them",
        CheckChildrenWithoutSets},
    {"A214", Severity::WARNING, CheckClass::STATIC, "tree with very many combinations",
        "A tree with more than 10000 combinations of basic events that make its top event true.",
        "each combination whose events are all in error is a root cause of its own, and nothing bounds their number",
        CheckNumberOfSets},
    {"A215", Severity::WARNING, CheckClass::STATIC, "rules on an event with a gate",
        "An entry of \"EventRules\" for an intermediate event.",
        "the event keeps what its own rules say: if they are false, everything below it is cut off",
        CheckRulesOfIntermediateEvents},
    {"A216", Severity::INFO, CheckClass::STATIC, "basic event that is never reported",
        "A basic event that is never the first one of a combination, as a child of an AND gate behind another.",
        "a root cause is reported by its first event: the texts and repairs of this one are never shown",
        CheckLeavesInSecondPlace},
};

} // namespace

std::span<const Check> CutSetChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
