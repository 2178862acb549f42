#include "diagnosis/analysis/check_fold.h"

#include <algorithm>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/evidence/recorded_tree.h"
#include "tests/support/random_cases.h"

namespace {

using diagnosis::CheckFold;
using diagnosis::FewestChecks;
using diagnosis::RecordedEvent;
using diagnosis::RecordedTree;
using Evidence::Check;
using Evidence::EventState;
using Evidence::GateType;

constexpr std::uint32_t NEVER = FewestChecks::NEVER;

ToldEvent Open(const std::string& id) { return {id, EventState::ABSENT}; }
ToldEvent Or(const std::string& id, std::vector<ToldEvent> below) { return GateEvent(id, true, std::move(below)); }
ToldEvent And(const std::string& id, std::vector<ToldEvent> below) { return GateEvent(id, false, std::move(below)); }

void Decide(RecordedEvent& event, bool isPresent)
{
    event.check = Check::DECIDED;
    event.status = isPresent ? EventState::PRESENT : EventState::ABSENT;
}

// The tree with open checks at its leaves and observable events, but for those whose id begins with "+" or "-": they are
// decided true and false.
RecordedTree Tree(const ToldEvent& top)
{
    RecordedTree tree = Told(top);
    for (RecordedEvent& event : tree.events) {
        if (event.IsLeaf() || event.observable) {
            event.check = Check::DATA_MISSING;
            if (event.id[0] == '+' || event.id[0] == '-') {
                Decide(event, event.id[0] == '+');
            }
        }
    }
    return tree;
}

std::string Number(std::uint32_t number) { return number == NEVER ? "never" : std::to_string(number); }

std::string Text(const FewestChecks& fewest) { return Number(fewest.toProve) + "/" + Number(fewest.toRuleOut); }

std::string OfCause(const ToldEvent& top) { return Text(CheckFold(Tree(top)).OfCause()); }

std::string NextOf(const RecordedTree& tree)
{
    const std::size_t next = CheckFold(tree).Next();
    return next == CheckFold::NONE ? "" : tree.events[next].id;
}

TEST(CheckFoldTest, CountsTheFewestChecksOfGates)
{
    EXPECT_EQ(OfCause(Open("A")), "1/1");
    EXPECT_EQ(OfCause(Open("+A")), "0/never");
    EXPECT_EQ(OfCause(Open("-A")), "never/0");
    EXPECT_EQ(OfCause(Or("T", {Open("A"), Open("B"), Open("-C")})), "1/2");
    EXPECT_EQ(OfCause(And("T", {Open("A"), Open("B"), Open("+C")})), "2/1");
    EXPECT_EQ(OfCause(Or("T", {And("G", {Open("A"), Open("B")}), And("H", {Open("C"), Open("D"), Open("E")})})), "2/2");
    EXPECT_EQ(OfCause(Or("T", {Open("A"), Open("+B")})), "0/never");
    EXPECT_EQ(OfCause(And("T", {Open("A"), Open("-B")})), "never/0");
}

TEST(CheckFoldTest, NeedsTheRulesOfAnObservableEventAndItsGate)
{
    ToldEvent observable = Or("T", {Open("A"), Open("B")});
    observable.observable = true;
    EXPECT_EQ(OfCause(observable), "2/1");
    EXPECT_EQ(NextOf(Tree(observable)), "T");
    observable.id = "+T";
    EXPECT_EQ(OfCause(observable), "1/2");
    EXPECT_EQ(NextOf(Tree(observable)), "A");
}

TEST(CheckFoldTest, ProvesNothingOfASubtreeWithoutCutSets)
{
    EXPECT_EQ(OfCause(Or("T", {})), "never/0");
    EXPECT_EQ(OfCause(And("T", {})), "never/0");
    EXPECT_EQ(OfCause(Or("T", {And("G", {}), Open("A")})), "1/1");
    // Before an event without cut sets no cut set counts, but the gate must be in error.
    EXPECT_EQ(OfCause(And("T", {Open("A"), And("G", {}), Open("B")})), "2/1");
    EXPECT_EQ(OfCause(And("T", {Open("A"), And("G", {})})), "never/0");
    EXPECT_EQ(OfCause(And("T", {Or("G", {}), Open("A")})), "never/0");
}

TEST(CheckFoldTest, AsksWhetherTheTopEventIsInErrorWhereNoRootCauseIsPossible)
{
    const RecordedTree tree = Tree(And("T", {Open("A"), Open("B"), And("G", {})}));
    const CheckFold fold(tree);
    EXPECT_EQ(Text(fold.OfCause()), "never/0");
    EXPECT_EQ(Text(fold.OfTree()), "2/1");
    EXPECT_EQ(NextOf(tree), "A");
}

TEST(CheckFoldTest, TakesTheFirstOfTheBestChecks)
{
    EXPECT_EQ(NextOf(Tree(Or("T", {And("G", {Open("A"), Open("B")}), Open("C"), Open("D")}))), "C");
    EXPECT_EQ(NextOf(Tree(And("T", {Or("G", {Open("A"), Open("B")}), Open("C"), Open("D")}))), "C");
    EXPECT_EQ(NextOf(Tree(Or("T", {Open("A"), Open("+B")}))), "");
    EXPECT_EQ(NextOf(RecordedTree()), "");
}

TEST(CheckFoldTest, CountsTheOpenRulesOfALeaf)
{
    const auto rule = [](Check check, bool hasFired, Evidence::Reason reason = Evidence::Reason::NONE) {
        Evidence::Rule one;
        one.check = check;
        one.verdict = hasFired ? Evidence::Verdict::FIRED : Evidence::Verdict::NOT_FIRED;
        one.reason = reason;
        return one;
    };
    const auto open = rule(Check::DATA_MISSING, false);
    const auto isFalse = rule(Check::DECIDED, false);
    const auto isTrue = rule(Check::DECIDED, true);
    const auto ended = rule(Check::NONE, false, Evidence::Reason::GROUP_ENDED);
    const auto ofAlternatives = [](const std::vector<Evidence::Alternative>& alternatives) {
        RecordedTree tree = Tree(Open("A"));
        tree.evidence.emplace_back();
        tree.evidence[0].alternatives = alternatives;
        tree.events[0].evidence = 0;
        return Text(CheckFold(tree).OfCause());
    };
    EXPECT_EQ(ofAlternatives({{false, {open}}, {false, {open}}, {false, {isFalse}}}), "1/2");
    EXPECT_EQ(ofAlternatives({{true, {open, ended, isTrue}}}), "2/1");
    EXPECT_EQ(ofAlternatives({{true, {isFalse, ended}}, {false, {open}}}), "1/1");
    EXPECT_EQ(ofAlternatives({{true, {open, ended}}, {false, {open}}}), "1/2");
    EXPECT_EQ(ofAlternatives({}), "1/1");
}

TEST(CheckFoldTest, AnswersEveryPlaceOfAnId)
{
    const RecordedTree tree = Tree(Or("T", {And("G", {Open("A"), Open("B")}), And("H", {Open("A"), Open("C")})}));
    CheckFold fold(tree);
    fold.Answer("A", true);
    EXPECT_EQ(Text(fold.OfCause()), "1/2");
    fold.Answer("A", false);
    EXPECT_EQ(Text(fold.OfCause()), "never/0");
    fold.AnswerAll({"A", "C"}, true);
    EXPECT_EQ(Text(fold.OfCause()), "0/never");
    fold.Answer("unknown", true);
    EXPECT_EQ(Text(fold.OfCause()), "0/never");
}

TEST(CheckFoldTest, IsNotDeeperThanTheTree)
{
    RecordedTree tree;
    const std::size_t depth = 200'000;
    for (std::size_t place = 0; place < depth; ++place) {
        RecordedEvent event;
        event.type = place + 1 < depth ? Evidence::EventType::INTERMEDIATE : Evidence::EventType::BASIC;
        event.gate = place + 1 < depth ? GateType::AND : GateType::NONE;
        event.check = place + 1 < depth ? Check::NONE : Check::NOT_CHECKED;
        event.parent = place == 0 ? RecordedEvent::NONE : place - 1;
        event.end = depth;
        tree.events.push_back(event);
    }
    CheckFold fold(tree);
    EXPECT_EQ(Text(fold.OfCause()), "1/1");
    EXPECT_EQ(fold.Next(), depth - 1);
    fold.Answer("", true);
    EXPECT_EQ(Text(fold.OfCause()), "0/never");
}

// ---- The plain definition, for every answer of the open checks. ----

using CutSets = std::vector<std::vector<std::size_t>>;

/// A tree whose open checks have answers: what is in error, and whether a cut set qualifies, by expanding every gate.
class PlainTree {
public:
    PlainTree(const RecordedTree& tree, std::set<std::string> present) : mTree(tree), mPresent(std::move(present)) {}

    bool IsInError(std::size_t place) const
    {
        const RecordedEvent& event = mTree.events[place];
        if (event.IsLeaf() || event.observable) {
            return IsOpen(event.check) ? mPresent.count(event.id) != 0 : event.IsInError();
        }
        const auto children = mTree.ChildrenOf(place);
        const auto isInError = [this](std::size_t child) { return IsInError(child); };
        return event.gate == GateType::OR ? std::any_of(children.begin(), children.end(), isInError)
                                          : std::all_of(children.begin(), children.end(), isInError);
    }

    bool HasCause() const
    {
        const CutSets sets = SetsOf(0);
        return std::any_of(sets.begin(), sets.end(), [this](const std::vector<std::size_t>& set) {
            return std::all_of(set.begin(), set.end(), [this](std::size_t member) { return IsInErrorToTop(member); });
        });
    }

private:
    bool IsInErrorToTop(std::size_t place) const
    {
        const auto path = mTree.PathTo(place);
        return std::all_of(path.begin(), path.end(), [this](std::size_t above) { return IsInError(above); });
    }

    CutSets SetsOf(std::size_t place) const
    {
        if (mTree.events[place].IsLeaf()) {
            return {{place}};
        }
        CutSets sets;
        for (const std::size_t child : mTree.ChildrenOf(place)) {
            const CutSets below = SetsOf(child);
            if (mTree.events[place].gate == GateType::OR) {
                sets.insert(sets.end(), below.begin(), below.end());
            } else {
                sets = sets.empty() ? below : Product(sets, below);
            }
        }
        return sets;
    }

    static CutSets Product(const CutSets& left, const CutSets& right)
    {
        CutSets product;
        for (const auto& one : left) {
            for (const auto& other : right) {
                product.push_back(one);
                product.back().insert(product.back().end(), other.begin(), other.end());
            }
        }
        return product;
    }

    const RecordedTree& mTree;
    std::set<std::string> mPresent;
};

std::vector<std::string> OpenIds(const RecordedTree& tree)
{
    std::set<std::string> ids;
    for (const RecordedEvent& event : tree.events) {
        if (Evidence::IsOpen(event.check)) {
            ids.insert(event.id);
        }
    }
    return {ids.begin(), ids.end()};
}

std::set<std::string> Chosen(const std::vector<std::string>& ids, std::size_t answers)
{
    std::set<std::string> chosen;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if ((answers >> i & 1U) != 0) {
            chosen.insert(ids[i]);
        }
    }
    return chosen;
}

/// Builds random trees, in which few gates have no events and few events have rules beside their gate.
class RandomTree {
public:
    RandomTree(RandomCases& random, bool repeatsIds) : mRandom(random), mRepeatsIds(repeatsIds) {}

    RecordedTree Make()
    {
        mIds = 0;
        mOpen = 0;
        return Tree(Gate(3));
    }

private:
    static constexpr std::size_t MOST_OPEN = 12;

    std::string Id(const std::string& sign = "")
    {
        const bool isRepeated = mRepeatsIds && sign.empty() && mIds > 0 && mRandom.OnceIn(3);
        return sign + "E" + std::to_string(isRepeated ? mRandom.Below(mIds) : mIds++);
    }

    std::string Check()
    {
        const bool isOpen = mOpen < MOST_OPEN && !mRandom.OnceIn(4);
        mOpen += isOpen ? 1U : 0U;
        return Id(isOpen ? "" : mRandom.OnceIn(2) ? "+" : "-");
    }

    ToldEvent Gate(int levels)
    {
        std::vector<ToldEvent> below;
        for (std::size_t count = mRandom.OnceIn(12) ? 0 : 1 + mRandom.Below(3); count > 0; --count) {
            below.push_back(levels > 0 && mRandom.OnceIn(2) ? Gate(levels - 1) : Open(Check()));
        }
        ToldEvent gate = GateEvent("", mRandom.OnceIn(2), below);
        gate.observable = mRandom.OnceIn(6);
        gate.id = gate.observable ? Check() : "G";
        return gate;
    }

    RandomCases& mRandom;
    bool mRepeatsIds;
    std::size_t mIds = 0;
    std::size_t mOpen = 0;
};

/// The fewest answers that settle a question, by trying all.
template <typename Question>
FewestChecks ByTrial(const std::vector<std::string>& ids, Question question)
{
    FewestChecks fewest{NEVER, NEVER};
    const std::size_t all = (std::size_t{1} << ids.size()) - 1;
    for (std::size_t answers = 0; answers <= all; ++answers) {
        const auto count = static_cast<std::uint32_t>(__builtin_popcountll(answers));
        if (count < fewest.toProve && question(Chosen(ids, answers))) {
            fewest.toProve = count;
        }
        if (count < fewest.toRuleOut && !question(Chosen(ids, all & ~answers))) {
            fewest.toRuleOut = count;
        }
    }
    return fewest;
}

TEST(CheckFoldTest, CountsWhatTryingAllAnswersCounts)
{
    RandomCases random(300);
    for (int n = 0; n < random.GetCount(); ++n) {
        const RecordedTree tree = RandomTree(random, false).Make();
        const auto ids = OpenIds(tree);
        const CheckFold fold(tree);
        EXPECT_EQ(Text(fold.OfCause()),
            Text(ByTrial(ids, [&tree](const auto& present) { return PlainTree(tree, present).HasCause(); })));
        EXPECT_EQ(Text(fold.OfStatus()),
            Text(ByTrial(ids, [&tree](const auto& present) { return PlainTree(tree, present).IsInError(0); })));
    }
}

// Whichever way the checks come out: the next one is always open, and the last one decides.
void FollowNext(const RecordedTree& tree, const std::set<std::string>& present)
{
    RecordedTree answered = tree;
    CheckFold fold(tree);
    std::set<std::string> asked;
    while (fold.OfTree().IsOpen()) {
        const std::size_t next = fold.Next();
        ASSERT_NE(next, CheckFold::NONE);
        const std::string& id = tree.events[next].id;
        ASSERT_TRUE(asked.insert(id).second) << id;
        for (RecordedEvent& event : answered.events) {
            if (event.id == id && Evidence::IsOpen(event.check)) {
                Decide(event, present.count(id) != 0);
            }
        }
        fold.Answer(id, present.count(id) != 0);
        const CheckFold anew(answered);
        ASSERT_EQ(Text(fold.OfCause()), Text(anew.OfCause()));
        ASSERT_EQ(Text(fold.OfStatus()), Text(anew.OfStatus()));
    }
    const PlainTree plain(tree, present);
    EXPECT_EQ(fold.OfCause().toProve == 0, plain.HasCause());
    EXPECT_TRUE(plain.HasCause() || (fold.OfStatus().toProve == 0) == plain.IsInError(0));
}

TEST(CheckFoldTest, FollowingTheNextCheckAlwaysDecides)
{
    RandomCases random(600);
    for (int n = 0; n < random.GetCount(); ++n) {
        const RecordedTree tree = RandomTree(random, n % 2 == 1).Make();
        const auto ids = OpenIds(tree);
        for (int i = 0; i < 8; ++i) {
            FollowNext(tree, Chosen(ids, random.Below(std::size_t{1} << ids.size())));
        }
    }
}

TEST(CheckFoldTest, TheNextCheckIsAmongTheFewestThatProveAndThatRuleOut)
{
    RandomCases random(600);
    for (int n = 0; n < random.GetCount(); ++n) {
        const RecordedTree tree = RandomTree(random, false).Make();
        CheckFold fold(tree);
        const FewestChecks before = fold.OfCause();
        if (!before.IsOpen()) {
            continue;
        }
        const std::string& id = tree.events[fold.Next()].id;
        fold.Answer(id, true);
        EXPECT_EQ(fold.OfCause().toProve, before.toProve - 1);
        fold.Answer(id, false);
        EXPECT_EQ(fold.OfCause().toRuleOut, before.toRuleOut - 1);
    }
}

// With an id at several places a check counts more often than it must be closed.
TEST(CheckFoldTest, CountsNoFewerThanNeededWhereIdsAreRepeated)
{
    RandomCases random(200);
    for (int n = 0; n < random.GetCount(); ++n) {
        const RecordedTree tree = RandomTree(random, true).Make();
        const FewestChecks fewest =
            ByTrial(OpenIds(tree), [&tree](const auto& present) { return PlainTree(tree, present).HasCause(); });
        const FewestChecks counted = CheckFold(tree).OfCause();
        EXPECT_LE(fewest.toProve, counted.toProve);
        EXPECT_LE(fewest.toRuleOut, counted.toRuleOut);
    }
}

} // namespace
