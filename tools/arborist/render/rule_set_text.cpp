#include "tools/arborist/render/rule_set_text.h"

#include <algorithm>

#include "diagnosis/rule_set/reach.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::command {

namespace {

using rule_set::Change;
using rule_set::Entry;
using rule_set::ItemKind;
using rule_set::Link;
using rule_set::Place;

std::string Count(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string PlaceText(const Place& place, const Colour& colour)
{
    return place.line == 0 ? "" : "  " + colour.Faint(Printable(place.file) + ":" + std::to_string(place.line));
}

// Of its file only the name: the folder was named by the user.
std::string ShortPlace(const Place& place, const Colour& colour)
{
    return PlaceText({place.file.substr(place.file.rfind('/') + 1), place.line}, colour);
}

std::string InBrackets(const std::string& text)
{
    return text.empty() ? "" : " (" + Printable(text) + ")";
}

// The names that an entry of the inventory is tied to: rules for an event, events for a rule.
std::string LinkedNames(const Entry& entry)
{
    std::string names;
    for (const Link& link : entry.links) {
        const bool isShown = link.relation == "decided by" || link.relation == "decides" || link.relation == "used by";
        names += isShown ? (names.empty() ? "" : ", ") + Shown(link.name) : "";
    }
    return names.empty() ? "" : (entry.kind == ItemKind::RULE ? " -> " : " <- ") + names;
}

// Empty for ids of descriptions: the words "described by" already say what they are.
std::string KindText(ItemKind kind)
{
    const bool isDescription = kind == ItemKind::FAULT_DESCRIPTIONS || kind == ItemKind::SOLUTIONS
        || kind == ItemKind::REPAIRS;
    return isDescription ? "" : std::string(" ") + rule_set::KindWord(kind);
}

std::string Heading(ItemKind kind)
{
    return kind == ItemKind::TREE          ? "trees"
        : kind == ItemKind::EVENT          ? "events"
        : kind == ItemKind::RULE           ? "rules"
        : kind == ItemKind::SHARED_DATA    ? "shared data"
                                           : "databases";
}

std::string TagInventory(const std::vector<Entry>& entries, const Colour& colour)
{
    std::string text;
    const Entry* last = nullptr;
    for (const Entry& entry : entries) {
        if (last == nullptr || last->kind != entry.kind) {
            const auto count = std::count_if(
                entries.begin(), entries.end(), [&](const Entry& other) { return other.kind == entry.kind; });
            text += "  " + Heading(entry.kind) + ": " + std::to_string(count) + "\n";
        }
        text += "    " + Shown(entry.name) + InBrackets(entry.detail) + LinkedNames(entry)
            + ShortPlace(entry.place, colour) + "\n";
        last = &entry;
    }
    return text;
}

std::string Value(const std::string& text)
{
    return "\"" + Printable(text) + "\"";
}

std::string ChangeText(const Change& change, const Colour& colour)
{
    const bool isAdded = change.what == Change::What::ADDED;
    const bool isGone = change.what == Change::What::GONE;
    const std::string mark = isAdded && change.key.empty() ? colour.Green("+")
        : isGone && change.key.empty()                     ? colour.Red("-")
                                                           : colour.Yellow("~");
    std::string text = mark + " " + rule_set::KindWord(change.kind) + " " + Shown(change.name);
    if (!change.key.empty()) {
        text += ", " + Printable(change.key) + ": " + (isAdded ? "nothing" : Value(change.before)) + " -> "
            + (isGone ? "nothing" : Value(change.after));
    }
    return text + PlaceText(change.beforePlace, colour) + PlaceText(change.afterPlace, colour) + "\n";
}

std::string ValueOrAny(const std::string& text)
{
    return text.empty() ? "any" : Printable(text);
}

std::string DeviceText(const lint::DeviceProfile& device)
{
    std::string scenes;
    for (const int scene : device.scenes) {
        scenes += (scenes.empty() ? "" : ", ") + std::to_string(scene);
    }
    return "product " + ValueOrAny(device.product) + ", platform " + ValueOrAny(device.platform) + ", device type "
        + ValueOrAny(device.deviceType) + ", scenes " + ValueOrAny(scenes);
}

std::string ObstacleText(const rule_set::Obstacle& obstacle, const std::string& cause, const Colour& colour)
{
    const std::string about = obstacle.event == cause ? "" : "needs " + Shown(obstacle.event) + ": ";
    const std::string rule = obstacle.rule.empty() ? "" : "rule " + Shown(obstacle.rule) + ": ";
    return "      " + about + rule + Printable(obstacle.reason)
        + ShortPlace(obstacle.rulePlace.line > 0 ? obstacle.rulePlace : obstacle.eventPlace, colour) + "\n";
}

std::string TreeReach(const rule_set::ReachedTree& tree, const Colour& colour)
{
    const auto reachable = static_cast<std::size_t>(std::count_if(
        tree.causes.begin(), tree.causes.end(), [](const rule_set::ReachedCause& cause) { return cause.isReachable; }));
    std::string text = "  " + colour.Bold(Shown(tree.tree)) + ": " + std::to_string(reachable) + " of "
        + Count(tree.causes.size(), "root cause") + "\n";
    for (const rule_set::ReachedCause& cause : tree.causes) {
        text += (cause.isReachable ? "    " + colour.Green("can") + "     " : "    " + colour.Red("cannot") + "  ")
            + Shown(cause.event) + ShortPlace(cause.place, colour) + "\n";
        for (const rule_set::Obstacle& obstacle : cause.obstacles) {
            text += ObstacleText(obstacle, cause.event, colour);
        }
    }
    return text;
}

} // namespace

std::string InventoryText(const rule_set::ReadRuleSet& rules, const Colour& colour)
{
    std::string text;
    for (const auto& tag : rules.tags) {
        text += colour.Bold(Shown(tag->tag)) + "\n" + TagInventory(rule_set::InventoryOf(*tag), colour);
    }
    return text;
}

std::string ShownText(const rule_set::Shown& shown, const Colour& colour)
{
    std::string text;
    for (const rule_set::Item& item : shown.items) {
        text += colour.Bold(std::string(rule_set::KindWord(item.kind)) + " " + Shown(item.name))
            + PlaceText(item.place, colour) + "\n";
        for (const rule_set::Fact& fact : item.facts) {
            text += "  " + Printable(fact.key) + ": " + Printable(fact.value)
                + (fact.line > 0 && fact.line != item.place.line ? colour.Faint("  :" + std::to_string(fact.line)) : "")
                + "\n";
        }
    }
    for (const Link& link : shown.links) {
        text += "  " + link.relation + KindText(link.kind) + " " + Shown(link.name) + InBrackets(link.detail)
            + ShortPlace(link.place, colour) + "\n";
    }
    return text;
}

std::string CountsText(const rule_set::ReadRuleSet& rules, const Colour& colour)
{
    constexpr std::size_t WIDTH = 30;
    std::string text;
    for (const auto& tag : rules.tags) {
        text += colour.Bold(Shown(tag->tag)) + "\n";
        for (const auto& [name, count] : rule_set::CountsOf(*tag)) {
            text += "  " + name + std::string(WIDTH - std::min(WIDTH, name.size()), ' ') + " " + std::to_string(count)
                + "\n";
        }
    }
    return text;
}

std::string DifferenceText(const std::vector<Change>& changes, const Colour& colour)
{
    std::string text;
    for (const Change& change : changes) {
        text += ChangeText(change, colour);
    }
    return text + (changes.empty() ? "no differences" : Count(changes.size(), "difference")) + "\n";
}

std::string ReachText(const rule_set::ReadRuleSet& rules, const lint::DeviceProfile& device, const Colour& colour)
{
    std::string text = DeviceText(device) + "\n";
    for (const auto& tag : rules.tags) {
        for (const rule_set::ReachedTree& tree : rule_set::ReachOf(*tag, device)) {
            text += TreeReach(tree, colour);
        }
    }
    return text;
}

} // namespace diagnosis::command
