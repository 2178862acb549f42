// The next check of a tree of 10^6 events, nearly all of whose checks are open: both numbers of every event and the way
// down, and what an answer costs. The baseline is the goal in milliseconds.

#include <cstddef>
#include <string>

#include "bench/compare.h"
#include "diagnosis/analysis/check_fold.h"

namespace {

using diagnosis::CheckFold;
using diagnosis::RecordedEvent;
using diagnosis::RecordedTree;

constexpr std::size_t EVENTS = 1'000'000;
constexpr std::size_t WIDTH = 10;
constexpr double MILLISECONDS = 50;

// Appends an event and those below it, down to leaves at the sixth level; the gates alternate.
void Append(std::size_t parent, std::size_t depth, RecordedTree& tree)
{
    const std::size_t place = tree.events.size();
    if (place == EVENTS) {
        return;
    }
    const bool isLeaf = depth == 6;
    RecordedEvent event;
    event.depth = depth;
    event.id = "EVENT_" + std::to_string(place);
    event.type = isLeaf ? Evidence::EventType::BASIC : Evidence::EventType::INTERMEDIATE;
    event.gate = isLeaf ? Evidence::GateType::NONE : depth % 2 == 0 ? Evidence::GateType::OR : Evidence::GateType::AND;
    event.check = !isLeaf ? Evidence::Check::NONE
        : place % 50 == 0 ? Evidence::Check::DECIDED
                          : Evidence::Check::DATA_MISSING;
    event.status = place % 100 == 0 ? Evidence::EventState::PRESENT : Evidence::EventState::ABSENT;
    event.parent = parent;
    tree.events.push_back(std::move(event));
    for (std::size_t child = 0; child < WIDTH && !isLeaf; ++child) {
        Append(place, depth + 1, tree);
    }
    tree.events[place].end = tree.events.size();
}

} // namespace

int main()
{
    static constexpr int ROUNDS = 9;
    RecordedTree tree;
    tree.events.reserve(EVENTS);
    Append(RecordedEvent::NONE, 0, tree);
    const std::string size = " [" + std::to_string(tree.events.size()) + " events]";
    const auto nothing = [] {};
    bench::Pair times = bench::Alternate(ROUNDS, [&tree] { bench::Keep(CheckFold(tree).Next()); }, nothing);
    bench::Report("next check" + size, {times.ours, MILLISECONDS}, 1);
    CheckFold fold(tree);
    fold.Answer("", false); // finds the places of the ids
    const std::size_t leaf = fold.Next();
    if (leaf == CheckFold::NONE) {
        return 1;
    }
    bool answer = false;
    times = bench::Alternate(ROUNDS, [&] { fold.Answer(tree.events[leaf].id, answer = !answer); }, nothing);
    bench::Report("next check after an answer" + size, {times.ours, MILLISECONDS / 50}, 1);
}
