#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::EventKind;
using rule_source::GateKind;
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

// The usual word for an event that is left undeveloped on purpose.
bool IsMeantUndeveloped(std::string_view word)
{
    return word == "Undeveloped-Event";
}

void CheckEventWords(const Subject& subject, Report& report)
{
    NearNames words;
    for (const char* word : {"Intermediate-Event", "Basic-Event", "Undeveloped-Event"}) {
        words.Add(word);
    }
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.kind != EventKind::UNDEVELOPED || IsMeantUndeveloped(event.element.Name())) {
            continue;
        }
        const std::string help = words.Help(event.element.Name());
        report.Add(event.element, Quoted(event.element.Name()) + " is no kind of event",
            {.help = help.empty() ? "an event that nobody decides is an \"Undeveloped-Event\"" : help});
    }
}

void CheckSeparators(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        const std::size_t at = event.id.find_first_of("/&");
        if (at != std::string_view::npos) {
            report.Add(event.idElement, NamedEvent(event) + " has " + Quoted(event.id.substr(at, 1)) + " in its id",
                {.help = "use another character, such as \"-\"", .isAboutText = true});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A201", Severity::ERROR, CheckClass::STATIC, "intermediate event without gate",
        "An \"Intermediate-Event\" with neither an \"Or-Gate\" nor an \"And-Gate\" as its child.",
        "a line in the log tells of it; the event keeps the status that its own rules give it, and no root cause is "
        "ever found below it", CheckGates},
    {"A206", Severity::ERROR, CheckClass::STATIC, "event of no known kind",
        "An element in a gate that is neither \"Intermediate-Event\" nor \"Basic-Event\" nor \"Undeveloped-Event\". "
        "Names are compared with case.",
        "it becomes an undeveloped event: UNKNOWN where nothing makes it true, and a gate below it is not read",
        CheckEventWords},
    {"A208", Severity::ERROR, CheckClass::STATIC, "separator in an event's id",
        "An id of an event with \"/\", which divides the steps of a path, or \"&\", which divides the members of a cut "
        "set.",
        "the path is split in the wrong place, leads nowhere, and the cut set is dropped", CheckSeparators},
};

} // namespace

std::span<const Check> TreeChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
