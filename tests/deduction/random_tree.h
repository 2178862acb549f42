#ifndef ARBORIST_TESTS_DEDUCTION_RANDOM_TREE_H
#define ARBORIST_TESTS_DEDUCTION_RANDOM_TREE_H

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/tree_builder.h"

/// Parameters of a random tree. Chances are percentages.
struct TreeStyle {
    const char* name;
    /// Ids are drawn from these; if empty, every event gets an id of its own.
    std::vector<std::string> ids;
    unsigned inError;
    unsigned withoutEvents = 8;
    unsigned withoutGate = 6;
    /// Chance that the same object gets another place, too.
    unsigned shared = 5;
};
void PrintTo(const TreeStyle& style, std::ostream* out);

/// Generates trees of up to five levels with statuses that rules might set. Equal seeds give equal trees.
class RandomTree {
public:
    RandomTree(unsigned seed, const TreeStyle& style) : mRandom(seed), mStyle(style) {}

    std::shared_ptr<FaultTree> Make();

private:
    unsigned Below(unsigned bound) { return std::uniform_int_distribution<unsigned>(0, bound - 1)(mRandom); }
    bool Chance(unsigned percent) { return Below(100) < percent; }
    std::string Id();
    EventStatus Status();
    std::shared_ptr<IntermediateEvent> Intermediate(unsigned depth);
    std::shared_ptr<Gate> AnyGate(unsigned depth);
    std::shared_ptr<Event> AnyEvent(unsigned depth);
    std::shared_ptr<Event> Remembered(const std::shared_ptr<Event>& event);

    std::mt19937 mRandom;
    const TreeStyle& mStyle;
    EventList mMade;
    unsigned mEvents = 0;
};

/// Upper bound of the combinations in the expansion.
double ExpansionOf(const Event& event);

#endif
