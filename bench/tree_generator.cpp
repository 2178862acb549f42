#include "bench/tree_generator.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"

namespace bench {
namespace {

std::shared_ptr<BasicEvent> MakeLeaf(const std::string& id)
{
    auto event = std::make_shared<BasicEvent>();
    event->FillEventInfo("", id, "Basic event " + id, "", "1");
    return event;
}

std::shared_ptr<IntermediateEvent> MakeInner(const std::string& id, std::shared_ptr<Gate> gate)
{
    auto event = std::make_shared<IntermediateEvent>();
    event->FillEventInfo("", id, "Intermediate event " + id, "", "1");
    event->SetObservable(false);
    event->SetGate(std::move(gate));
    return event;
}

std::shared_ptr<FaultTree> MakeTree(std::shared_ptr<IntermediateEvent> top)
{
    auto tree = std::make_shared<FaultTree>("Tree", "1", "bench");
    tree->SetIntermediateEvent(std::move(top));
    return tree;
}

void Break(Event& event)
{
    event.SetResult(EventStatus::TRUE);
}

// Puts `count` leaves, evenly spread, in error.
void BreakSome(const std::vector<Event*>& leaves, std::size_t count)
{
    for (std::size_t leaf = 0; leaf < count && leaf < leaves.size(); ++leaf) {
        Break(*leaves[leaf * leaves.size() / count]);
    }
}

class WideBuilder {
public:
    explicit WideBuilder(std::size_t fanOut) : mFanOut(fanOut) {}

    std::shared_ptr<IntermediateEvent> Build(int levels)
    {
        const bool isAnd = levels == 1 && ++mGates % 2 == 0;
        std::shared_ptr<Gate> gate;
        if (isAnd) {
            gate = std::make_shared<AndGate>();
        } else {
            gate = std::make_shared<OrGate>();
        }
        for (std::size_t child = 0; child < mFanOut; ++child) {
            if (levels > 1) {
                gate->AddEvent(Build(levels - 1));
                continue;
            }
            const auto leaf = MakeLeaf("PC_EVENT_" + std::to_string(mLeaves++));
            gate->AddEvent(leaf);
            if (!isAnd) {
                mUnderOr.push_back(leaf.get());
            } else if (child == 0) {
                mFirstUnderAnd.push_back(leaf.get());
            }
        }
        return MakeInner("PC_GROUP_" + std::to_string(mInner++), gate);
    }

    const std::vector<Event*>& UnderOr() const { return mUnderOr; }
    const std::vector<Event*>& FirstUnderAnd() const { return mFirstUnderAnd; }

private:
    std::size_t mFanOut;
    std::size_t mGates = 0;
    std::size_t mLeaves = 0;
    std::size_t mInner = 0;
    std::vector<Event*> mUnderOr;
    std::vector<Event*> mFirstUnderAnd;
};

class ExplodingBuilder {
public:
    ExplodingBuilder(std::size_t branches, std::size_t width) : mBranches(branches), mWidth(width) {}

    // How many ORs directly below have all branches in error, and how many just one; the rest have none.
    struct Alive {
        std::size_t full;
        std::size_t single;
    };

    std::shared_ptr<IntermediateEvent> BuildAnd(std::size_t pairs, const Alive& alive)
    {
        auto gate = std::make_shared<AndGate>();
        for (std::size_t branch = 0; branch < mBranches; ++branch) {
            const std::size_t chosen = branch < alive.full                ? mWidth
                : branch < alive.full + alive.single ? 1
                                                     : 0;
            gate->AddEvent(BuildOr(pairs, chosen));
        }
        return MakeInner("AND_" + std::to_string(mInner++), gate);
    }

private:
    std::shared_ptr<IntermediateEvent> BuildOr(std::size_t pairs, std::size_t chosen)
    {
        auto gate = std::make_shared<OrGate>();
        for (std::size_t child = 0; child < mWidth; ++child) {
            const bool isAlive = chosen == mWidth || (chosen == 1 && child == mWidth / 2);
            if (pairs > 1) {
                // A part that must not survive has many events in error, too, but none below its last OR.
                gate->AddEvent(BuildAnd(pairs - 1, isAlive ? Alive{0, mBranches} : Alive{mBranches - 1, 0}));
                continue;
            }
            const auto leaf = MakeLeaf("LEAF_" + std::to_string(mLeaves++));
            if (isAlive) {
                Break(*leaf);
            }
            gate->AddEvent(leaf);
        }
        return MakeInner("OR_" + std::to_string(mInner++), gate);
    }

    std::size_t mBranches;
    std::size_t mWidth;
    std::size_t mInner = 0;
    std::size_t mLeaves = 0;
};

// A graph of gates and basic events with shared children; a gate refers to later gates only. A child number below GATES
// is a gate, any other a basic event.
class Model {
public:
    static constexpr std::size_t GATES = 220;
    static constexpr std::size_t BASICS = 400;

    explicit Model(unsigned seed) : mRandom(seed), mChildren(GATES), mIsOr(GATES), mIsBroken(GATES + BASICS)
    {
        for (std::size_t gate = 0; gate < GATES; ++gate) {
            mIsOr[gate] = Below(100) < 55;
            const std::size_t count = 2 + Below(4);
            while (mChildren[gate].size() < count) {
                const std::size_t child = AnyChild(gate);
                auto& children = mChildren[gate];
                if (std::find(children.begin(), children.end(), child) == children.end()) {
                    children.push_back(child);
                }
            }
        }
        BreakOneCutSet(0);
    }

    // Number of events below a gate if every shared branch is repeated.
    double WrittenOut() const
    {
        return Fold([](double) { return 1.0; }, [](bool, const std::vector<double>& below) {
            double sum = 1;
            for (const double size : below) {
                sum += size;
            }
            return sum;
        });
    }

    double RootCauses() const
    {
        return Fold([](double isBroken) { return isBroken; }, [](bool isOr, const std::vector<double>& below) {
            double count = isOr ? 0 : 1;
            for (const double ofChild : below) {
                count = isOr ? count + ofChild : count * ofChild;
            }
            return count;
        });
    }

    std::shared_ptr<Event> Write(std::size_t node) const
    {
        if (node >= GATES) {
            const auto leaf = MakeLeaf("BASIC_" + std::to_string(node - GATES));
            if (mIsBroken[node]) {
                Break(*leaf);
            }
            return leaf;
        }
        std::shared_ptr<Gate> gate;
        if (mIsOr[node]) {
            gate = std::make_shared<OrGate>();
        } else {
            gate = std::make_shared<AndGate>();
        }
        for (const std::size_t child : mChildren[node]) {
            gate->AddEvent(Write(child));
        }
        return MakeInner("GATE_" + std::to_string(node), gate);
    }

private:
    std::size_t Below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(mRandom); }

    std::size_t AnyChild(std::size_t gate)
    {
        const std::size_t later = std::min<std::size_t>(GATES - gate - 1, 24);
        return later > 6 && Below(100) < 50 ? gate + 1 + Below(later) : GATES + Below(BASICS);
    }

    void BreakOneCutSet(std::size_t node)
    {
        if (node >= GATES) {
            mIsBroken[node] = true;
        } else if (mIsOr[node]) {
            BreakOneCutSet(mChildren[node][Below(mChildren[node].size())]);
        } else {
            for (const std::size_t child : mChildren[node]) {
                BreakOneCutSet(child);
            }
        }
    }

    template <typename OfBasic, typename OfGate>
    double Fold(OfBasic ofBasic, OfGate ofGate) const
    {
        std::vector<double> values(GATES);
        for (std::size_t gate = GATES; gate-- > 0;) {
            std::vector<double> below;
            for (const std::size_t child : mChildren[gate]) {
                below.push_back(child < GATES ? values[child] : ofBasic(mIsBroken[child] ? 1.0 : 0.0));
            }
            values[gate] = ofGate(mIsOr[gate], below);
        }
        return values[0];
    }

    std::mt19937 mRandom;
    std::vector<std::vector<std::size_t>> mChildren;
    std::vector<bool> mIsOr;
    std::vector<bool> mIsBroken;
};

std::size_t CountBelow(const Event& event)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    std::size_t count = 1;
    if (intermediate != nullptr && intermediate->GetGate() != nullptr) {
        for (const auto& child : intermediate->GetGate()->GetEvents()) {
            count += CountBelow(*child);
        }
    }
    return count;
}

} // namespace

std::shared_ptr<FaultTree> WideTree(std::size_t events, std::size_t fanOut, std::size_t inError,
                                    std::size_t rootCauses)
{
    WideBuilder builder(fanOut);
    auto top = builder.Build(
        static_cast<int>(std::lround(std::log(static_cast<double>(events)) / std::log(static_cast<double>(fanOut)))));
    BreakSome(builder.UnderOr(), rootCauses);
    BreakSome(builder.FirstUnderAnd(), inError - rootCauses);
    return MakeTree(top);
}

std::shared_ptr<FaultTree> ExplodingTree(std::size_t pairs, std::size_t branches, std::size_t width, int open)
{
    const ExplodingBuilder::Alive alive = open < 0
        ? ExplodingBuilder::Alive{0, branches - 1}
        : ExplodingBuilder::Alive{static_cast<std::size_t>(open), branches - static_cast<std::size_t>(open)};
    const auto top = ExplodingBuilder(branches, width).BuildAnd(pairs, alive);
    // In error by its own rules, so that the deduction walks down although nothing below explains it.
    top->SetObservable(open < 0);
    top->SetResult(open < 0 ? EventStatus::TRUE : EventStatus::FALSE);
    return MakeTree(top);
}

std::shared_ptr<FaultTree> ModelTree(std::size_t maxEvents, double maxRootCauses)
{
    for (unsigned seed = 1;; ++seed) {
        const Model model(seed);
        const double size = model.WrittenOut();
        if (size > static_cast<double>(maxEvents) || size < 0.9 * static_cast<double>(maxEvents)) {
            continue;
        }
        if (model.RootCauses() <= maxRootCauses && model.RootCauses() >= 0.1 * maxRootCauses) {
            return MakeTree(std::static_pointer_cast<IntermediateEvent>(model.Write(0)));
        }
    }
}

std::size_t CountEvents(const FaultTree& tree)
{
    return tree.GetIntermediateEvent() == nullptr ? 0 : CountBelow(*tree.GetIntermediateEvent());
}

} // namespace bench
