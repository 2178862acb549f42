#include "diagnosis/analysis/next_checks.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

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

// Whether an open check counts at several places, or rests on what another one rests on, too.
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

// Takes the check for answered in the way that leaves the tree open. False if both ways decide it.
bool LeaveOpen(const RecordedTree& tree, std::size_t event, CheckFold& fold)
{
    for (const bool isPresent : {false, true}) {
        fold.Answer(tree.events[event].id, isPresent);
        if (fold.OfTree().IsOpen()) {
            return true;
        }
    }
    return false;
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

// One fold for each answer.
bool IsDecidedBy(const TreeReport& report, const EventsOfSource& events)
{
    CheckFold fold(report.tree);
    for (const bool isPresent : {false, true}) {
        fold.AnswerAll(events, isPresent);
        if (fold.OfTree().IsOpen()) {
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
    NextChecks next;
    next.fewest = fold.OfTree();
    next.isAboutCause = fold.OfCause().IsOpen();
    next.isAtMost = HasRepeatedChecks(report);
    while (next.checks.size() < most && fold.OfTree().IsOpen()) {
        const std::size_t event = fold.Next();
        next.checks.push_back({event, fold.OfTree()});
        if (!LeaveOpen(report.tree, event, fold)) {
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
            source.decides += events != ofTree.end() && IsDecidedBy(*report, events->second) ? 1U : 0U;
        }
    }
    std::erase_if(found.sources, [](const MissingSource& source) { return source.decides == 0; });
    SortByMost(found.sources, &MissingSource::decides);
    return found;
}

} // namespace diagnosis
