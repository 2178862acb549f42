#include "arborist/deduction/judge_tree.h"

#include <utility>

#include "arborist/deduction/flat_tree.h"
#include "arborist/deduction/possible_causes.h"
#include "arborist/deduction/verdict_fold.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"

namespace {

using Evidence::Check;
using Evidence::TreeVerdict;
using Word = TreeVerdict::Word;

bool HasEventWithoutGate(const FlatTree& tree)
{
    for (FlatTree::Index place = 0; place < tree.Count(); ++place) {
        if (tree.GetEvent(place).GetKind() == EventKind::INTERMEDIATE && tree.GetGate(place) == nullptr) {
            return true;
        }
    }
    return false;
}

Word WordOfChecks(const Evidence::CheckCounts& checks)
{
    if (checks.Of(Check::DECIDED) != 0) {
        return Word::NO_FAULT;
    }
    const std::size_t total = checks.Total();
    return total != 0 && checks.Of(Check::NOT_APPLICABLE) == total ? Word::NOT_APPLICABLE : Word::UNDECIDED;
}

// Judges a tree without root causes.
void JudgeFaultless(const VerdictFold& fold, TreeVerdict& verdict)
{
    const bool isUnread = HasEventWithoutGate(fold.GetTree());
    // If open checks could make the top event true, the tree is undecided even without a cut set.
    const bool couldBeTrue = fold.HasCutSet() || fold.IsTopInError();
    verdict.word = couldBeTrue || isUnread ? Word::UNDECIDED : WordOfChecks(verdict.checks);
    // Answers to the open checks would end UNDECIDED, so the verdict is not complete, unless the top event is true
    // whatever the answers are.
    const bool wouldChange = verdict.word == Word::UNDECIDED && verdict.checks.Open() != 0;
    verdict.isComplete = !fold.HasCutSet() && !isUnread && (!wouldChange || verdict.isTrueWithoutCause);
}

void ListPossibleCauses(const VerdictFold& fold, TreeVerdict& verdict)
{
    const FlatTree& tree = fold.GetTree();
    PossibleCauses causes(fold);
    while (const auto* leaves = causes.Next()) {
        if (verdict.possibleCauses.size() == MOST_POSSIBLE_CAUSES) {
            verdict.arePossibleCausesTruncated = true;
            return;
        }
        TreeVerdict::PossibleCause& cause = verdict.possibleCauses.emplace_back();
        for (const FlatTree::Index leaf : *leaves) {
            for (const FlatTree::Index member : fold.ListMembers(leaf)) {
                if (cause.cutSet.empty()) {
                    cause.id = tree.GetId(member);
                }
                cause.cutSet.push_back(tree.GetPath(member));
            }
        }
    }
}

} // namespace

TreeVerdict JudgeTree(const FaultTree& tree, bool isFault, const std::vector<Check>& checks)
{
    const std::shared_ptr<Event> top = tree.GetIntermediateEvent();
    const FlatTree places(top);
    TreeVerdict verdict;
    std::vector<bool> isOpen(places.Count());
    for (FlatTree::Index place = 0; place < places.Count() && place < checks.size(); ++place) {
        verdict.checks.Add(checks[place]);
        isOpen[place] = Evidence::IsOpen(checks[place]);
    }
    const VerdictFold fold(places, std::move(isOpen));
    verdict.isTrueWithoutCause = !isFault && places.Count() != 0 && IsError(places.GetEvent(0).GetResult());
    if (isFault) {
        verdict.word = Word::FAULT;
        verdict.isComplete = !fold.AddsCutSet();
    } else {
        JudgeFaultless(fold, verdict);
    }
    ListPossibleCauses(fold, verdict);
    return verdict;
}
