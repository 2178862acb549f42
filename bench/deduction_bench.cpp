// Deduction against a walk over the same tree that reads each status, plus, if there are many root causes, one
// microsecond for each member of their cut sets.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "arborist/deduction/fault_tree_visitor.h"
#include "arborist/deduction/root_cause.h"
#include "arborist/deduction/root_cause_search.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/model/event.h"
#include "arborist/model/gate.h"
#include "bench/compare.h"
#include "bench/heap_gauge.h"
#include "bench/tree_generator.h"

namespace {

constexpr double GOAL = 3.0;
constexpr double MILLISECONDS_FOR_A_MEMBER = 0.001;

std::size_t CountErrors(const Event& event)
{
    std::size_t count = IsError(event.GetResult()) ? 1 : 0;
    const IntermediateEvent* intermediate = event.AsIntermediate();
    if (intermediate != nullptr && intermediate->GetGate() != nullptr) {
        for (const auto& child : intermediate->GetGate()->GetEvents()) {
            count += CountErrors(*child);
        }
    }
    return count;
}

std::size_t CountMembers(const FaultTree& tree)
{
    RootCauseSearch search(tree);
    const std::size_t causes = search.Find().size();
    std::size_t members = 0;
    for (std::size_t cause = 0; cause < causes; ++cause) {
        members += search.CutSetOf(cause).size();
    }
    return members;
}

void CompareTime(const std::string& name, const std::shared_ptr<FaultTree>& tree, int rounds)
{
    FaultTreeVisitor visitor(nullptr);
    visitor.DeduceRootCause(tree);
    const auto members = static_cast<double>(CountMembers(*tree));
    bench::Pair times = bench::Alternate(
        rounds, [&] { visitor.DeduceRootCause(tree); },
        [&] { bench::Keep(CountErrors(*tree->GetIntermediateEvent())); });
    times.baseline += members * MILLISECONDS_FOR_A_MEMBER;
    bench::Report(name + " [" + std::to_string(bench::CountEvents(*tree)) + " events " +
                      std::to_string(visitor.GetRootCauseList().size()) + " root causes]",
                  times, GOAL);
}

// Peak memory of a deduction, against that of the tree and the results.
void CompareMemory(const std::string& name, const std::shared_ptr<FaultTree>& tree, double treeBytes)
{
    FaultTreeVisitor visitor(nullptr);
    const HeapGauge gauge;
    visitor.DeduceRootCause(tree);
    bench::Report(name + " memory bytes", {gauge.Peak(), treeBytes + gauge.Live()}, 1.0);
}

template <typename Make>
void Compare(const std::string& name, int rounds, Make make)
{
    double treeBytes = 0;
    std::shared_ptr<FaultTree> tree;
    {
        const HeapGauge gauge;
        tree = make();
        treeBytes = gauge.Live();
    }
    CompareTime(name, tree, rounds);
    CompareMemory(name, tree, treeBytes);
}

void CompareExplosions()
{
    struct Explosion {
        const char* cutSets;
        std::size_t pairs;
        std::size_t branches;
        std::size_t width;
        /// See ExplodingTree.
        std::vector<int> open;
    };
    // The smallest trees are measured with many root causes only: with none, two log lines cost more than a walk over
    // 67 events.
    const std::vector<Explosion> explosions = {
        {"10^6 cut sets in 3 levels", 1, 2, 1000, {-1, 0, 1}}, {"10^6 cut sets in 3 levels", 1, 6, 10, {2, 5}},
        {"10^30 cut sets in 5 levels", 2, 5, 10, {-1, 0, 2, 5}}, {"10^39 cut sets in 7 levels", 3, 3, 10, {-1, 0, 2}},
        {"10^120 cut sets in 9 levels", 4, 3, 10, {-1, 0, 2}},
    };
    for (const Explosion& explosion : explosions) {
        for (const int open : explosion.open) {
            Compare(std::string("explosion ") + explosion.cutSets, open == 5 ? 5 : 15, [&] {
                return bench::ExplodingTree(explosion.pairs, explosion.branches, explosion.width, open);
            });
        }
    }
}

} // namespace

int main()
{
    bench::SilenceLog();
    Compare("fold and deduce fan-out 10", 15, [] { return bench::WideTree(1000000, 10, 100, 20); });
    Compare("fold and deduce fan-out 1000", 15, [] { return bench::WideTree(1000000, 1000, 100, 20); });
    Compare("fold and deduce one gate", 15, [] { return bench::WideTree(1000000, 1000000, 20, 20); });
    CompareExplosions();
    Compare("real tree", 15, [] { return bench::ModelTree(200000, 1000); });
    Compare("real tree", 15, [] { return bench::ModelTree(2000000, 100000); });
    return 0;
}
