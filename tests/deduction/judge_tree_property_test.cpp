#include <algorithm>
#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "arborist/deduction/judge_tree.h"
#include "arborist/deduction/plain/minimal_cutset_parser.h"
#include "arborist/deduction/plain/root_cause_locator.h"
#include "tests/deduction/cause_text.h"
#include "tests/deduction/random_tree.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"

namespace {

using Evidence::Check;
using Evidence::TreeVerdict;
using Word = TreeVerdict::Word;

constexpr std::size_t MOST_OPEN = 6;

void ListEvents(const std::shared_ptr<Event>& event, EventList& events)
{
    events.push_back(event);
    const IntermediateEvent* intermediate = event->AsIntermediate();
    if (intermediate != nullptr && intermediate->GetGate() != nullptr) {
        for (const auto& child : intermediate->GetGate()->GetEvents()) {
            ListEvents(child, events);
        }
    }
}

// A tree and the checks of its events.
struct CheckedTree {
    std::shared_ptr<FaultTree> tree;
    EventList events;
    std::vector<Check> checks;

    bool HasOwnStatus(std::size_t event) const
    {
        return events[event]->AsIntermediate() == nullptr || events[event]->IsObservable();
    }

    // The events whose answer is not known. An event that the engine made true stays true.
    std::vector<Event*> ListAsked() const
    {
        std::vector<Event*> asked;
        for (std::size_t event = 0; event < events.size(); ++event) {
            if (Evidence::IsOpen(checks[event]) && !IsError(events[event]->GetResult())) {
                asked.push_back(events[event].get());
            }
        }
        return asked;
    }
};

CheckedTree MakeTree(unsigned seed, const TreeStyle& style, const std::vector<Check>& words)
{
    CheckedTree made;
    made.tree = RandomTree(seed, style).Make();
    ListEvents(made.tree->GetIntermediateEvent(), made.events);
    std::mt19937 random(seed);
    std::size_t open = 0;
    for (std::size_t event = 0; event < made.events.size(); ++event) {
        Check check = made.HasOwnStatus(event) ? words[random() % words.size()] : Check::NONE;
        open += Evidence::IsOpen(check) ? 1 : 0;
        const bool isTrue = IsError(made.events[event]->GetResult());
        const bool countsAsFalse = check != Check::NONE && check < Check::DECIDED;
        if ((Evidence::IsOpen(check) && open > MOST_OPEN) || (countsAsFalse && isTrue)) {
            check = Check::DECIDED;
        }
        made.checks.push_back(check);
    }
    return made;
}

// The result of a detection for one answer to each open check.
struct Outcome {
    bool isTopTrue;
    std::vector<std::string> causes;
};

Outcome OutcomeOf(FaultTree& tree, const MinimalCutSet& cutSets)
{
    tree.Check();
    Outcome outcome{IsError(tree.GetIntermediateEvent()->GetResult()), {}};
    for (const auto& cutSet : cutSets) {
        if (!RootCauseLocator().FindRootCause(tree, {cutSet}).empty()) {
            outcome.causes.push_back(Joined(cutSet, " & "));
        }
    }
    return outcome;
}

// The word once every open check is answered and therefore `decided`.
Word WordOf(const Outcome& outcome, const std::vector<Check>& checks)
{
    if (!outcome.causes.empty()) {
        return Word::FAULT;
    }
    const auto count = [&checks](auto condition) { return std::count_if(checks.begin(), checks.end(), condition); };
    if (outcome.isTopTrue) {
        return Word::UNDECIDED;
    }
    if (count([](Check check) { return check >= Check::DECIDED; }) > 0) {
        return Word::NO_FAULT;
    }
    const auto all = count([](Check check) { return check != Check::NONE; });
    const auto notApplicable = count([](Check check) { return check == Check::NOT_APPLICABLE; });
    return all > 0 && all == notApplicable ? Word::NOT_APPLICABLE : Word::UNDECIDED;
}

// The verdict computed by trying every answer.
TreeVerdict ByTrial(const CheckedTree& made)
{
    const MinimalCutSet cutSets = MinimalCutsetParser::GetMcs(*made.tree);
    const std::vector<Event*> asked = made.ListAsked();
    std::vector<EventStatus> statuses;
    for (const Event* event : asked) {
        statuses.push_back(event->GetResult());
    }
    const Outcome low = OutcomeOf(*made.tree, cutSets);
    const std::set<std::string> known(low.causes.begin(), low.causes.end());
    std::set<Word> words;
    std::vector<std::string> added;
    for (unsigned answers = 0; answers < 1U << asked.size(); ++answers) {
        for (std::size_t event = 0; event < asked.size(); ++event) {
            asked[event]->SetResult((answers >> event & 1U) != 0 ? EventStatus::TRUE : EventStatus::FALSE);
        }
        const Outcome outcome = OutcomeOf(*made.tree, cutSets);
        words.insert(WordOf(outcome, made.checks));
        // The last combination of answers, all true, adds everything that others add.
        std::vector<std::string> more;
        std::copy_if(outcome.causes.begin(), outcome.causes.end(), std::back_inserter(more),
                     [&known](const std::string& cause) { return known.count(cause) == 0; });
        for (const auto& cause : added) {
            EXPECT_TRUE(answers + 1 != 1U << asked.size() ||
                        std::find(more.begin(), more.end(), cause) != more.end());
        }
        added = more;
    }
    for (std::size_t event = 0; event < asked.size(); ++event) {
        asked[event]->SetResult(statuses[event]);
    }
    made.tree->Check();

    TreeVerdict verdict;
    const bool isAnyDecided = std::count(made.checks.begin(), made.checks.end(), Check::DECIDED) > 0;
    if (!low.causes.empty()) {
        verdict.word = Word::FAULT;
    } else if (words.size() == 1 && (*words.begin() != Word::NO_FAULT || isAnyDecided)) {
        verdict.word = *words.begin();
    }
    verdict.isComplete = added.empty() && words == std::set<Word>{verdict.word};
    verdict.isTrueWithoutCause = low.isTopTrue && low.causes.empty();
    for (const auto& cause : added) {
        verdict.possibleCauses.push_back({cause, {}});
    }
    return verdict;
}

std::string TextOf(const TreeVerdict& verdict, bool isByTrial)
{
    std::string text = Evidence::TreeVerdictText(verdict.word);
    text += verdict.isComplete ? " complete" : " incomplete";
    text += verdict.isTrueWithoutCause ? " true_without_cause" : "";
    for (const auto& cause : verdict.possibleCauses) {
        text += "\n" + (isByTrial ? cause.id : Joined(cause.cutSet, " & "));
    }
    return text;
}

bool IsFault(const CheckedTree& made)
{
    LogCapture log;
    return !OutcomeOf(*made.tree, MinimalCutsetParser::GetMcs(*made.tree)).causes.empty();
}

std::vector<EventStatus> StatusesOf(const EventList& events)
{
    std::vector<EventStatus> statuses;
    for (const auto& event : events) {
        statuses.push_back(event->GetResult());
    }
    return statuses;
}

const std::vector<Check> ALL_WORDS = {Check::DECIDED, Check::NOT_CHECKED, Check::DATA_MISSING, Check::RULE_UNUSABLE,
                                      Check::NOT_SELECTED, Check::NOT_APPLICABLE, Check::DECIDED};
const std::vector<Check> MOSTLY_DECIDED = {Check::DECIDED, Check::DECIDED, Check::DECIDED, Check::DATA_MISSING};
const std::vector<Check> NOTHING_DECIDED = {Check::NOT_APPLICABLE, Check::NOT_APPLICABLE, Check::NOT_SELECTED,
                                            Check::NOT_CHECKED};
const std::vector<Check> NOT_FOR_THIS_DEVICE = {Check::NOT_APPLICABLE};

class RandomCheckedTrees : public testing::TestWithParam<TreeStyle> {};

TEST_P(RandomCheckedTrees, AreJudgedAsByTryingEveryAnswer)
{
    std::map<std::string, int> seen;
    for (const auto& words : {ALL_WORDS, MOSTLY_DECIDED, NOTHING_DECIDED, NOT_FOR_THIS_DEVICE}) {
        for (unsigned seed = 1; seed <= 200; ++seed) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            const CheckedTree made = MakeTree(seed, GetParam(), words);
            if (ExpansionOf(*made.tree->GetIntermediateEvent()) > 60) {
                continue;
            }
            const bool isFault = IsFault(made);
            const auto before = StatusesOf(made.events);
            LogCapture log;
            const TreeVerdict verdict = JudgeTree(*made.tree, isFault, made.checks);
            ASSERT_TRUE(log.Lines().empty());
            ASSERT_EQ(StatusesOf(made.events), before);
            ASSERT_EQ(TextOf(verdict, false), TextOf(ByTrial(made), true));
            ++seen[Evidence::TreeVerdictText(verdict.word)];
            ++seen[verdict.isComplete ? "complete" : "incomplete"];
            ++seen[verdict.isTrueWithoutCause ? "true_without_cause" : "explained"];
        }
    }
    // The test is only meaningful if all kinds of verdicts occur.
    EXPECT_EQ(seen.size(), 8U);
    for (const auto& [text, count] : seen) {
        EXPECT_GT(count, 5) << text;
    }
}

// Without gates that could not be read, for which other rules apply.
INSTANTIATE_TEST_SUITE_P(Table, RandomCheckedTrees, testing::Values(
    TreeStyle{"MostlyHealthy", {}, 30, 8, 0, 0},
    TreeStyle{"MostlyInError", {}, 70, 8, 0, 0},
    TreeStyle{"ManyEmptyGates", {}, 40, 40, 0, 0},
    TreeStyle{"IdsMoreThanOnce", {"A", "B", "C", "D"}, 40, 8, 0, 0},
    TreeStyle{"Separators", {"A", "B", "C", "D", "A/B", "A&A", "B&A/B", "/", ""}, 60, 8, 0, 0}), CaseName());

// The same tree and checks with the events of each gate in another order.
class Shuffled {
public:
    Shuffled(const CheckedTree& made, unsigned seed) : mRandom(seed)
    {
        for (std::size_t event = 0; event < made.events.size(); ++event) {
            mCheckOf[made.events[event].get()] = made.checks[event];
        }
        const auto top = Copy(made.tree->GetIntermediateEvent());
        mTree.tree = TreeOf(std::static_pointer_cast<IntermediateEvent>(top));
        ListEvents(top, mTree.events);
        for (const auto& event : mTree.events) {
            mTree.checks.push_back(mCheckOf[event.get()]);
        }
    }

    const CheckedTree& GetTree() const { return mTree; }

private:
    std::shared_ptr<Event> Copy(const std::shared_ptr<Event>& event)
    {
        std::shared_ptr<Event> copy = Leaf(event->GetId(), event->GetResult());
        if (const IntermediateEvent* intermediate = event->AsIntermediate()) {
            EventList events;
            for (const auto& child : intermediate->GetGate()->GetEvents()) {
                events.push_back(Copy(child));
            }
            std::shuffle(events.begin(), events.end(), mRandom);
            const bool isOr = intermediate->GetGate()->GetKind() == GateKind::OR;
            const std::shared_ptr<Gate> gate = isOr ? std::shared_ptr<Gate>(Or(events)) : And(events);
            copy = Observable(event->GetId(), event->GetResult(), gate);
            copy->SetObservable(event->IsObservable());
        }
        mCheckOf[copy.get()] = mCheckOf[event.get()];
        return copy;
    }

    std::mt19937 mRandom;
    std::map<const Event*, Check> mCheckOf;
    CheckedTree mTree;
};

// As text that doesn't depend on the order of causes and of their members.
std::string SetsOf(TreeVerdict verdict)
{
    for (auto& cause : verdict.possibleCauses) {
        std::sort(cause.cutSet.begin(), cause.cutSet.end());
    }
    std::sort(verdict.possibleCauses.begin(), verdict.possibleCauses.end(),
              [](const auto& one, const auto& other) { return one.cutSet < other.cutSet; });
    return TextOf(verdict, false);
}

TEST(RandomCheckedTreesTest, OrderOfEventsDoesNotCountWhereEveryEventHasACombination)
{
    const TreeStyle style{"OwnIds", {}, 30, 0, 0, 0};
    for (unsigned seed = 1; seed <= 500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const CheckedTree made = MakeTree(seed, style, ALL_WORDS);
        if (ExpansionOf(*made.tree->GetIntermediateEvent()) > 60) {
            continue;
        }
        const bool isFault = IsFault(made);
        const Shuffled shuffled(made, seed);
        ASSERT_EQ(IsFault(shuffled.GetTree()), isFault);
        EXPECT_EQ(SetsOf(JudgeTree(*shuffled.GetTree().tree, isFault, shuffled.GetTree().checks)),
                  SetsOf(JudgeTree(*made.tree, isFault, made.checks)));
    }
}

} // namespace
