#include <set>
#include <tuple>

#include <json/value.h>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::lint {

namespace {

using rule_source::EventKind;
using rule_source::TreeEvent;

std::string NamedEvent(const TreeEvent& event)
{
    return "the event " + Quoted(event.id);
}

// True for the usual words for an event that is undeveloped on purpose.
bool IsMeantUndeveloped(std::string_view word)
{
    return word == "Undeveloped-Event";
}

void CheckEventWords(const Subject& subject, Report& report)
{
    NearNames words{"Intermediate-Event", "Basic-Event", "Undeveloped-Event"};
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.kind != EventKind::UNDEVELOPED || IsMeantUndeveloped(event.element.Name())) {
            continue;
        }
        report.Add(event.element, Quoted(event.element.Name()) + " is no kind of event",
            {.help = "an event that nobody decides is an \"Undeveloped-Event\"",
                .near = words.Find(event.element.Name())});
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

// ---- Ids. ----

void CheckRepeatedIds(const Subject& subject, Report& report)
{
    std::set<std::tuple<std::size_t, std::string_view>> seen;
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (!event.id.empty() && !seen.insert({event.tree, event.id}).second) {
            report.Add(event.idElement, NamedEvent(event) + " is already in this tree",
                {.help = "give each event an id of its own; events of one id share their rules", .isAboutText = true});
        }
    }
}

void CheckEmptyIds(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.id.empty()) {
            report.Add(event.idElement ? event.idElement : event.element,
                "this " + std::string(event.element.Name()) + " has no id");
        }
    }
    for (const auto& binding : subject.rules.bindings.all) {
        if (binding.id.empty()) {
            report.Add(binding.idElement ? binding.idElement : binding.element, "this entry names no event");
        }
    }
}

void CheckSpacesAroundIds(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (!event.id.empty() && event.id.size() != event.idElement.Text().size()) {
            report.Add(event.idElement, "the id of " + NamedEvent(event) + " has spaces around it",
                {.help = "remove them: elsewhere they would be part of the id",
                    .fix = FixOf::Text(std::string(event.id), true),
                    .isAboutText = true});
        }
    }
}

// ---- User-defined texts. ----

// The name of a rule of the event that is no code rule; empty if there is none.
std::string_view RuleOfAnotherFamily(const TreeEvent& event)
{
    if (event.binding == nullptr) {
        return {};
    }
    for (const auto& alternative : event.binding->alternatives) {
        for (const auto& name : alternative.names) {
            if (name.rule != nullptr && name.rule->family != rule_source::Family::CODE) {
                return name.name;
            }
        }
    }
    return {};
}

void CheckDetectModes(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        if (event.detectMode.Text() != "2") {
            continue;
        }
        const std::string_view rule = RuleOfAnotherFamily(event);
        if (!rule.empty()) {
            report.Add(event.detectMode, NamedEvent(event) + " is left to the host and has the rule " + Quoted(rule)
                    + ", which is no code rule", {.isAboutText = true});
        }
    }
}

// The problem with a user-defined text; empty if a repair can be read from it, or if it has none.
std::string TroubleOf(const std::string& text)
{
    std::string problem;
    const auto json = ParseEngineJson(text, problem);
    if (!json) {
        return "is no JSON: " + problem;
    }
    if (!json->isObject()) {
        return std::string("is ") + JsonKind(*json) + " and no JSON object";
    }
    const Json::Value& id = (*json)["Repairid"];
    return id.isNull() || id.isString() ? "" : std::string("has a \"Repairid\" that is ") + JsonKind(id);
}

void CheckUserDefined(const Subject& subject, Report& report)
{
    for (const TreeEvent& event : subject.rules.trees.events) {
        const std::string trouble =
            event.userDefined.HasText() ? TroubleOf(std::string(event.userDefined.Text())) : "";
        if (!trouble.empty()) {
            report.Add(event.userDefined, "the user-defined text of " + NamedEvent(event) + " " + trouble,
                {.help = "write it as {\"Repairid\": \"R7\"}", .isAboutText = true});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A206", Severity::ERROR, CheckClass::STATIC, "event of no known kind",
        "An element in a gate that is neither \"Intermediate-Event\" nor \"Basic-Event\" nor \"Undeveloped-Event\". "
        "Names are compared with case.",
        "it becomes an undeveloped event: UNKNOWN where nothing makes it true, and a gate below it is not read",
        CheckEventWords},
    {"A208", Severity::ERROR, CheckClass::STATIC, "separator in an event's id",
        "An id of an event with \"/\", which divides the steps of a path, or \"&\", which divides the members of a cut "
        "set.",
        "the path is split in the wrong place, leads nowhere, and the cut set is dropped", CheckSeparators},
    {"A209", Severity::WARNING, CheckClass::STATIC, "event id twice in one tree",
        "Two events of one tree with one id.",
        "their rules run once for each of them, and a root cause with both lists the id once", CheckRepeatedIds},
    {"A210", Severity::ERROR, CheckClass::STATIC, "event without an id",
        "An event of a tree without an \"ID\" or with an empty one, and an entry of \"EventRules\" without one.",
        "an event without an id can't be given rules; an entry without one is dropped", CheckEmptyIds},
    {"A218", Severity::WARNING, CheckClass::STATIC, "event left to the host with rules of the engine",
        "An event with the detect mode \"2\" and a rule that is no code rule.",
        "its rules are not asked: it keeps the status that it starts with", CheckDetectModes},
    {"A219", Severity::ERROR, CheckClass::STATIC, "user-defined text that names no repair",
        "A \"UserDefined\" that is no JSON object, or whose \"Repairid\" is no text.",
        "no repair is read of it, so that what happened before a repair counts again; a text that is no JSON leaves a line in "
        "the log", CheckUserDefined},
    {"A220", Severity::INFO, CheckClass::STATIC, "spaces around an id of the tree file",
        "An \"ID\" of an event with spaces at its ends.", "they are stripped here, and nowhere else",
        CheckSpacesAroundIds},
};

} // namespace

std::span<const Check> EventChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
