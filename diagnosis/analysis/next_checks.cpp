#include "diagnosis/analysis/next_checks.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "diagnosis/analysis/shared_rules.h"
#include "diagnosis/bundle/bundle_overlay.h"

namespace diagnosis {

namespace {

using Evidence::OpenCheck;
using SourceKey = std::pair<Reason, std::string>;

// Whether checks of a tree lack the event log. Those on tables that are derived from it then do so, too, whatever their own
// reason is.
std::optional<Reason> MissingLog(const TreeReport& report)
{
    const auto& open = report.verdict.open;
    for (const Reason reason : LOG_REASONS) {
        if (std::any_of(open.begin(), open.end(), [reason](const OpenCheck& check) { return check.reason == reason; })) {
            return reason;
        }
    }
    return std::nullopt;
}

SourceKey KeyOf(const OpenCheck& open, std::optional<Reason> missingLog)
{
    return missingLog && RestsOnLog(open.reason, open.detail) ? SourceKey(*missingLog, "") : SourceKey(open.reason, open.detail);
}

// Whether what is missing may be behind several checks: a file, a database, a program. An event without rules is missing
// nothing but its own.
bool IsShared(const OpenCheck& open)
{
    return open.check == Evidence::Check::DATA_MISSING;
}

// Whether an open check counts at several places, or lacks what another one lacks, too.
bool HasRepeatedChecks(const TreeReport& report)
{
    std::unordered_set<std::string_view> ids;
    for (const RecordedEvent& event : report.tree.events) {
        if (Evidence::IsOpen(event.check) && !ids.insert(event.id).second) {
            return true;
        }
    }
    const auto missingLog = MissingLog(report);
    std::map<SourceKey, std::string_view> sources;
    return std::any_of(report.verdict.open.begin(), report.verdict.open.end(), [&](const OpenCheck& open) {
        return IsShared(open) && sources.emplace(KeyOf(open, missingLog), open.eventId).first->second != open.eventId;
    });
}

// Whether a group ended at an open rule: those behind it count as open, but may have their answers.
bool HasUnreachedRules(const RecordedTree& tree)
{
    const auto ended = [](const Evidence::Alternative& alternative) {
        const auto& rules = alternative.rules;
        return !rules.empty() && rules.back().reason == Reason::GROUP_ENDED
            && std::any_of(rules.begin(), rules.end(), [](const Evidence::Rule& rule) { return Evidence::IsOpen(rule.check); });
    };
    return std::any_of(tree.evidence.begin(), tree.evidence.end(), [ended](const Evidence::Event& event) {
        const auto& alternatives = event.alternatives;
        return Evidence::IsOpen(event.check) && std::any_of(alternatives.begin(), alternatives.end(), ended);
    });
}

// Takes the check, and those that the same answer closes, for answered in the way that leaves the tree open. False if both
// ways decide it.
bool LeaveOpen(const std::vector<std::string_view>& events, CheckFold& fold)
{
    for (const bool isPresent : {false, true}) {
        if (events.size() == 1) {
            fold.Answer(events.front(), isPresent); // which needs no pass over the tree
        } else {
            fold.AnswerAll(events, isPresent);
        }
        if (fold.OfTree().IsOpen()) {
            return true;
        }
    }
    return false;
}

// Whether an event has no gate that could be read: no answer rules a fault out before the rule set is mended.
bool LacksGate(const TreeReport& report)
{
    const auto& open = report.verdict.open;
    return std::any_of(open.begin(), open.end(), [](const OpenCheck& check) { return check.reason == Reason::NO_GATE; });
}

// No fault needs a check that was decided, even if no answer could make the top event true.
bool LacksAnyAnswer(const TreeReport& report, const CheckFold& fold)
{
    return fold.OfStatus().toRuleOut == 0 && report.verdict.checks.Of(Evidence::Check::DECIDED) == 0 && !LacksGate(report);
}

// The check that needs the fewest answers. An event with several rules may need more than one.
void FindFirstAnswer(const RecordedTree& tree, const CheckFold& fold, std::size_t most, NextChecks& next)
{
    next.aim = NextChecks::Aim::FIRST_ANSWER;
    next.fewest = {FewestChecks::NEVER, FewestChecks::NEVER};
    std::size_t best = CheckFold::NONE;
    for (std::size_t place = 0; place < tree.events.size(); ++place) {
        if (!Evidence::IsOpen(tree.events[place].check)) {
            continue;
        }
        const FewestChecks check = fold.OfCheck(place);
        const std::uint32_t answers = std::min(check.toProve, check.toRuleOut);
        if (answers < next.fewest.toRuleOut) {
            next.fewest.toRuleOut = answers;
            best = place;
        }
    }
    if (best != CheckFold::NONE && most > 0) {
        next.checks.push_back({best, next.fewest});
    }
}

/// The events of one tree whose open checks rest on a source.
using EventsOfSource = std::vector<std::string_view>;

std::map<SourceKey, EventsOfSource> SourcesOf(const TreeReport& report)
{
    const auto missingLog = MissingLog(report);
    std::map<SourceKey, EventsOfSource> sources;
    for (const OpenCheck& open : report.verdict.open) {
        if (Evidence::IsOpen(open.check)) {
            sources[KeyOf(open, missingLog)].push_back(open.eventId);
        }
    }
    return sources;
}

// One fold for each answer. As some check is answered then, a tree that lacked any answer is decided, too.
bool IsDecidedBy(const TreeReport& report, const EventsOfSource& events, Reason missing)
{
    if (missing != Reason::NO_GATE && LacksGate(report)) {
        return false;
    }
    CheckFold fold(report.tree);
    for (const bool isPresent : {false, true}) {
        fold.AnswerAll(events, isPresent);
        if (!fold.IsDecided()) {
            return false;
        }
    }
    return true;
}

std::vector<const TreeReport*> UndecidedOf(const TreeReports& reports)
{
    std::vector<const TreeReport*> undecided;
    for (const TreeReport& report : reports) {
        if (report.IsUndecided()) {
            undecided.push_back(&report);
        }
    }
    return undecided;
}

// All sources, those of the first tree first, with the number of their checks.
std::vector<MissingSource> CountedSources(const std::vector<const TreeReport*>& undecided)
{
    std::vector<MissingSource> sources;
    std::map<SourceKey, std::size_t> places;
    for (const TreeReport* report : undecided) {
        for (const auto& [key, events] : SourcesOf(*report)) {
            const auto [place, isNew] = places.emplace(key, sources.size());
            if (isNew) {
                sources.push_back({key.first, key.second});
            }
            sources[place->second].checks += events.size();
        }
    }
    return sources;
}

template <typename Number>
void SortByMost(std::vector<MissingSource>& sources, Number number)
{
    std::stable_sort(sources.begin(), sources.end(),
        [number](const MissingSource& one, const MissingSource& other) { return one.*number > other.*number; });
}

} // namespace

bool RestsOnLog(Reason reason, const std::string& detail)
{
    return std::find(LOG_REASONS.begin(), LOG_REASONS.end(), reason) != LOG_REASONS.end()
        || detail.ends_with(DERIVED_DATABASE);
}

MissingSource SourceOf(const TreeReport& report, const OpenCheck& open)
{
    const SourceKey key = KeyOf(open, MissingLog(report));
    return {key.first, key.second};
}

const OpenCheck* OpenCheckOf(const TreeReport& report, const std::string& eventId)
{
    const auto& open = report.verdict.open;
    const auto found =
        std::find_if(open.begin(), open.end(), [&eventId](const OpenCheck& check) { return check.eventId == eventId; });
    return found == open.end() ? nullptr : &*found;
}

NextChecks FindNextChecks(const TreeReport& report, std::size_t most)
{
    CheckFold fold(report.tree);
    const SharedRules shared(report.tree);
    NextChecks next;
    next.isAtMost = HasUnreachedRules(report.tree) || shared.HasAny() || HasRepeatedChecks(report);
    if (LacksAnyAnswer(report, fold)) {
        FindFirstAnswer(report.tree, fold, most, next);
        return next;
    }
    next.fewest = fold.OfTree();
    next.aim = fold.OfCause().IsOpen() ? NextChecks::Aim::CAUSE : NextChecks::Aim::TOP_EVENT;
    while (next.checks.size() < most && fold.OfTree().IsOpen()) {
        const std::size_t event = fold.Next();
        next.checks.push_back({event, fold.OfTree()});
        if (!LeaveOpen(shared.AnsweredWith(event), fold)) {
            break;
        }
    }
    return next;
}

MissingSources FindMissingSources(const TreeReports& reports)
{
    const std::vector<const TreeReport*> undecided = UndecidedOf(reports);
    MissingSources found;
    found.undecided = undecided.size();
    found.sources = CountedSources(undecided);
    SortByMost(found.sources, &MissingSource::checks);
    found.sources.resize(std::min(found.sources.size(), MissingSources::MOST));
    for (const TreeReport* report : undecided) {
        const auto ofTree = SourcesOf(*report);
        for (MissingSource& source : found.sources) {
            const auto events = ofTree.find({source.reason, source.detail});
            source.decides += events != ofTree.end() && IsDecidedBy(*report, events->second, source.reason) ? 1U : 0U;
        }
    }
    std::erase_if(found.sources, [](const MissingSource& source) { return source.decides == 0; });
    SortByMost(found.sources, &MissingSource::decides);
    return found;
}

} // namespace diagnosis
