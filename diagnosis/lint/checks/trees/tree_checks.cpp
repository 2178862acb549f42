#include <map>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Element;
using rule_source::EventKind;
using rule_source::GateKind;
using rule_source::Tree;
using rule_source::TreeEvent;

std::string NamedEvent(const TreeEvent& event)
{
    return "the event " + Quoted(event.id);
}

void CheckGates(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.kind == EventKind::INTERMEDIATE && event.gateKind == GateKind::NONE) {
            report.Add(event.element, "the intermediate event " + Quoted(event.id) + " has no gate",
                {.help = "give it an \"Or-Gate\" or an \"And-Gate\", or make it a \"Basic-Event\""});
        }
    }
}

// ---- Trees. ----

void CheckVersion(const Subject& subject, Report& report)
{
    const Element root = subject.rules.files.TreeRoot();
    if (root && !root.Has("version")) {
        report.Add(root, "the tree file has no version", {.help = "give its root element a \"version\""});
    }
}

std::string NamedTree(const Tree& tree)
{
    return tree.id.empty() ? "this tree" : "the tree " + Quoted(tree.id);
}

void CheckTreeAttributes(const Subject& subject, Report& report)
{
    for (const Tree& tree : subject.rules.trees.trees) {
        for (const char* attribute : {"id", "version", "type"}) {
            if (!tree.element.Has(attribute)) {
                report.Add(tree.element, NamedTree(tree) + " has no " + Quoted(attribute),
                    {.help = "a tree needs \"id\", \"version\" and \"type\""});
            }
        }
    }
}

void CheckTopEvents(const Subject& subject, Report& report)
{
    for (const Tree& tree : subject.rules.trees.trees) {
        if (!tree.top) {
            report.Add(tree.element, NamedTree(tree) + " has no top event",
                {.help = "its first \"Intermediate-Event\" is its top event"});
        } else if (const Element second = tree.top.Next("Intermediate-Event")) {
            report.Add(second, NamedTree(tree) + " has a second top event",
                {.help = "give it a tree of its own, or put both into a gate"});
        }
    }
}

void CheckTreeIds(const Subject& subject, Report& report)
{
    std::map<std::string_view, int> lines;
    for (const Tree& tree : subject.rules.trees.trees) {
        if (!tree.isKept) {
            continue;
        }
        const auto [first, isNew] = lines.emplace(tree.id, tree.element.Line());
        if (!isNew) {
            report.Add(tree.element, "another tree has the id " + Quoted(tree.id) + ", in line "
                    + std::to_string(first->second), {.attribute = tree.element.Find("id")});
        }
    }
}

// ---- Gates. ----

Element GateBelow(Element event)
{
    const Element orGate = event.FirstChild("Or-Gate");
    return orGate ? orGate : event.FirstChild("And-Gate");
}

void CheckBothGates(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        const Element andGate = event.gateKind == GateKind::OR ? event.element.FirstChild("And-Gate") : Element();
        if (andGate) {
            report.Add(andGate, NamedEvent(event) + " has an \"Or-Gate\" as well",
                {.help = "put one of them into an intermediate event of its own, below the other"});
        }
    }
}

void CheckGatesOfLeaves(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        const Element gate = event.kind == EventKind::INTERMEDIATE ? Element() : GateBelow(event.element);
        if (gate) {
            report.Add(gate, NamedEvent(event) + " is a " + Quoted(event.element.Name()) + " and has a gate",
                {.help = "only an \"Intermediate-Event\" has a gate"});
        }
    }
}

void CheckEmptyGates(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.gateKind != GateKind::NONE && !event.gate.FirstChild()) {
            const bool isAnd = event.gateKind == GateKind::AND;
            report.Add(event.gate, "the gate of " + NamedEvent(event) + " is empty: it is always "
                    + (isAnd ? "TRUE" : "FALSE"));
        }
    }
}

constexpr Check CHECKS[] = {
    {"A105", Severity::WARNING, CheckClass::STATIC, "tree file without a version",
        "A tree file whose root element has no \"version\".", "every result carries the version \"-1\"", CheckVersion},
    {"A201", Severity::ERROR, CheckClass::STATIC, "intermediate event without gate",
        "An \"Intermediate-Event\" with neither an \"Or-Gate\" nor an \"And-Gate\" as its child.",
        "it leaves a line in the log; the event keeps the status that its own rules give it, and no root cause is "
        "ever found below it", CheckGates},
    {"A202", Severity::ERROR, CheckClass::STATIC, "tree without id, version or type",
        "A tree that lacks one of its three attributes.", "the whole tree is left out, without a line in the log",
        CheckTreeAttributes},
    {"A203", Severity::WARNING, CheckClass::STATIC, "tree without a top event, or with two",
        "A tree without an \"Intermediate-Event\" as its child, or with more than one.",
        "a tree without a top event is left out; of several the first one is the top event, and the others are not read",
        CheckTopEvents},
    {"A204", Severity::WARNING, CheckClass::STATIC, "event with both kinds of gates",
        "An intermediate event with an \"Or-Gate\" and an \"And-Gate\".",
        "the OR gate counts, whichever comes first, and the AND gate is not read", CheckBothGates},
    {"A205", Severity::WARNING, CheckClass::STATIC, "gate below a basic or undeveloped event",
        "A gate in an element that is no \"Intermediate-Event\".", "nothing in the gate is read",
        CheckGatesOfLeaves},
    {"A207", Severity::WARNING, CheckClass::STATIC, "empty gate", "A gate without events.",
        "an empty AND gate is TRUE and an empty OR gate FALSE; neither has a combination, so that a top event can be TRUE "
        "without a root cause", CheckEmptyGates},
    {"A217", Severity::INFO, CheckClass::STATIC, "two trees with one id", "Two trees of a tag with one id.",
        "their results can't be told apart", CheckTreeIds},
};

} // namespace

std::span<const Check> TreeChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
