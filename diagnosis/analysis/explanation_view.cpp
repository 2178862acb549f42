#include "diagnosis/analysis/explanation_view.h"

#include <algorithm>
#include <set>
#include <utility>

#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

bool HasRule(const RecordedTree& tree, const RecordedEvent& event, const std::string& name)
{
    const Evidence::Event* evidence = tree.EvidenceOf(event);
    if (evidence == nullptr) {
        return false;
    }
    const auto rules = RulesOf(*evidence);
    return std::any_of(rules.begin(), rules.end(), [&name](const PlacedRule& placed) { return placed.rule.name == name; });
}

// True if the event itself or one above it has this id.
bool IsBelow(const RecordedTree& tree, std::size_t event, const std::string& id)
{
    for (; event != RecordedEvent::NONE; event = tree.events[event].parent) {
        if (tree.events[event].id == id) {
            return true;
        }
    }
    return false;
}

bool IsOnTheWay(const RecordedTree& tree, const RecordedCause& cause, const std::string& id)
{
    return std::any_of(cause.members.begin(), cause.members.end(),
        [&](std::size_t member) { return IsBelow(tree, member, id); });
}

bool ShowsNearMiss(const RecordedTree& tree, const NearMiss& nearMiss, const ExplanationView& view)
{
    std::vector<std::size_t> members = nearMiss.missing;
    members.insert(members.end(), nearMiss.present.begin(), nearMiss.present.end());
    const auto isAny = [&members](auto isMeant) { return std::any_of(members.begin(), members.end(), isMeant); };
    return (view.event.empty() || isAny([&](std::size_t member) { return IsBelow(tree, member, view.event); }))
        && (view.rule.empty() || isAny([&](std::size_t member) { return HasRule(tree, tree.events[member], view.rule); }))
        && (view.cause.empty() || isAny([&](std::size_t member) { return tree.events[member].id == view.cause; }));
}

bool IsMember(const DistinctCause& cause, const std::string& id)
{
    return std::find(cause.ids.begin(), cause.ids.end(), id) != cause.ids.end();
}

bool ShowsCause(const RecordedTree& tree, const DistinctCause& cause, const ExplanationView& view)
{
    const RecordedCause& first = tree.causes[cause.first];
    if (!view.cause.empty() && !IsMember(cause, view.cause)) {
        return false;
    }
    if (!view.event.empty() && !IsOnTheWay(tree, first, view.event)) {
        return false;
    }
    return view.rule.empty() || std::any_of(first.members.begin(), first.members.end(), [&](std::size_t member) {
        return member != RecordedEvent::NONE && HasRule(tree, tree.events[member], view.rule);
    });
}

std::optional<Failure> Unless(
    const std::set<std::string>& known, const std::string& kind, FailureCode code, const std::string& word)
{
    if (word.empty() || known.count(word) != 0) {
        return std::nullopt;
    }
    const std::vector<std::string> candidates(known.begin(), known.end());
    return Failure{code, "no " + kind + " \"" + word + "\" in this detection" + DidYouMean(word, candidates)};
}

} // namespace

std::optional<Failure> UnknownWord(const TreeReports& reports, const ExplanationView& view)
{
    std::set<std::string> events;
    std::set<std::string> rules;
    for (const TreeReport& report : reports) {
        for (const RecordedEvent& event : report.tree.events) {
            events.insert(event.id);
        }
        for (const Evidence::Event& evidence : report.tree.evidence) {
            for (const PlacedRule& placed : RulesOf(evidence)) {
                rules.insert(placed.rule.name);
            }
        }
    }
    if (auto failure = Unless(events, "event", FailureCode::UNKNOWN_EVENT, view.event)) {
        return failure;
    }
    if (auto failure = Unless(rules, "rule", FailureCode::UNKNOWN_RULE, view.rule)) {
        return failure;
    }
    // Accept any event as a root cause: the view also shows how far it is from being one.
    for (const TreeReport& report : reports) {
        for (const RecordedCause& cause : report.tree.causes) {
            events.insert(cause.id);
        }
    }
    return Unless(events, "root cause", FailureCode::UNKNOWN_CAUSE, view.cause);
}

std::vector<std::size_t> ShownEvents(const RecordedTree& tree, const ExplanationView& view)
{
    std::set<std::string> onTheWay;
    if (!view.cause.empty()) {
        for (const DistinctCause& cause : DistinctCausesOf(tree)) {
            if (IsMember(cause, view.cause)) {
                onTheWay.insert(cause.ids.begin(), cause.ids.end());
            }
        }
    }
    std::vector<std::size_t> shown;
    std::set<std::pair<std::string, std::size_t>> known;
    for (std::size_t place = 0; place < tree.events.size(); ++place) {
        const RecordedEvent& event = tree.events[place];
        const bool isMeant = (view.event.empty() || event.id == view.event)
            && (view.rule.empty() || HasRule(tree, event, view.rule))
            && (view.cause.empty() || onTheWay.count(event.id) != 0);
        if (isMeant && known.emplace(event.id, event.evidence).second) {
            shown.push_back(place);
        }
    }
    return shown;
}

bool HasShown(const RecordedTree& tree, const ExplanationView& view)
{
    return !view.IsNarrow() || !ShownEvents(tree, view).empty()
        || (view.nearMisses > 0 && !ShownNearMisses(tree, view).sets.empty());
}

bool IsShown(const Evidence::Rule& rule, const ExplanationView& view)
{
    return view.rule.empty() || rule.name == view.rule;
}

NearMisses ShownNearMisses(const RecordedTree& tree, const ExplanationView& view)
{
    if (!view.IsNarrow()) {
        return FindNearMisses(tree, view.nearMisses, view.limit);
    }
    static constexpr std::size_t MOST_LOOKED_AT = 100000;
    NearMisses found = FindNearMisses(tree, view.nearMisses, MOST_LOOKED_AT);
    found.isComplete = found.isComplete && found.leftOut == 0;
    std::erase_if(found.sets, [&](const NearMiss& nearMiss) { return !ShowsNearMiss(tree, nearMiss, view); });
    const std::size_t shown = std::min(found.sets.size(), view.limit);
    found.leftOut = found.sets.size() - shown;
    found.sets.resize(shown);
    return found;
}

std::vector<DistinctCause> ShownCauses(const RecordedTree& tree, const ExplanationView& view)
{
    std::vector<DistinctCause> causes = DistinctCausesOf(tree);
    std::erase_if(causes, [&](const DistinctCause& cause) { return !ShowsCause(tree, cause, view); });
    return causes;
}

} // namespace diagnosis
