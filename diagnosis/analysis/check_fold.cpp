#include "diagnosis/analysis/check_fold.h"

#include <algorithm>

namespace diagnosis {

namespace {

constexpr std::uint32_t NEVER = FewestChecks::NEVER;
constexpr FewestChecks YES{0, NEVER};
constexpr FewestChecks NO{NEVER, 0};

/// What is kept of each check that was answered.
enum Answered : unsigned char { NOT_YET, TRUE_NOW, FALSE_NOW };

std::uint32_t Sum(std::uint32_t one, std::uint32_t other)
{
    const std::uint64_t sum = std::uint64_t{one} + other;
    return sum < NEVER ? static_cast<std::uint32_t>(sum) : NEVER;
}

FewestChecks AnyOf(const FewestChecks& one, const FewestChecks& other)
{
    return {std::min(one.toProve, other.toProve), Sum(one.toRuleOut, other.toRuleOut)};
}

FewestChecks AllOf(const FewestChecks& one, const FewestChecks& other)
{
    return {Sum(one.toProve, other.toProve), std::min(one.toRuleOut, other.toRuleOut)};
}

// A rule that was not reached, as its group had ended, must come out true, too.
FewestChecks OfRule(const Evidence::Rule& rule)
{
    if (IsUnanswered(rule)) {
        return {1, 1};
    }
    return rule.verdict == Evidence::Verdict::FIRED ? YES : NO;
}

FewestChecks OfRules(const Evidence::Event& event)
{
    FewestChecks any = NO;
    for (const Evidence::Alternative& alternative : event.alternatives) {
        FewestChecks all = alternative.rules.empty() ? NO : YES;
        for (const Evidence::Rule& rule : alternative.rules) {
            all = AllOf(all, OfRule(rule));
        }
        any = AnyOf(any, all);
    }
    return any;
}

} // namespace

bool IsUnanswered(const Evidence::Rule& rule)
{
    return Evidence::IsOpen(rule.check) || rule.reason == Reason::GROUP_ENDED;
}

CheckFold::CheckFold(const RecordedTree& tree)
    : mTree(tree), mCause(tree.events.size(), NO), mStatus(tree.events.size(), NO), mHasCutSets(tree.events.size(), true)
{
    Fold();
}

// An intermediate event whose gate could not be read is one if its own check is open: nothing is known below it.
bool CheckFold::IsLeaf(std::size_t place) const
{
    return At(place).IsLeaf() || (At(place).gate == Evidence::GateType::NONE && Evidence::IsOpen(At(place).check));
}

FewestChecks CheckFold::OfCheck(std::size_t place) const
{
    const RecordedEvent& event = At(place);
    if (!mAnswers.empty() && mAnswers[place] != NOT_YET) {
        return mAnswers[place] == TRUE_NOW ? YES : NO;
    }
    if (!Evidence::IsOpen(event.check)) {
        return event.IsInError() ? YES : NO;
    }
    const Evidence::Event* const evidence = event.evidence == NONE ? nullptr : mTree.EvidenceOf(event);
    const FewestChecks ofRules = evidence == nullptr ? NO : OfRules(*evidence);
    return ofRules.IsOpen() ? ofRules : FewestChecks{1, 1};
}

CheckFold::Gate CheckFold::EmptyGate(std::size_t place) const
{
    const RecordedEvent& event = At(place);
    Gate gate{place, IsOr(place), event.observable, NO, NO};
    if (event.gate == Evidence::GateType::AND) {
        gate.cause = gate.status = YES;
    } else if (event.gate == Evidence::GateType::NONE && event.IsInError()) {
        gate.status = YES;
    }
    return gate;
}

void CheckFold::Add(std::size_t child, Gate& gate) const
{
    if (gate.isOr) {
        gate.cause = AnyOf(gate.cause, mCause[child]);
        gate.status = AnyOf(gate.status, mStatus[child]);
        gate.hasCutSets = gate.hasCutSets || mHasCutSets[child];
        return;
    }
    gate.isClosed = gate.isClosed || !mHasCutSets[child];
    gate.status = AllOf(gate.status, mStatus[child]);
    if (!gate.isClosed) {
        gate.cause = AllOf(gate.cause, mCause[child]);
        gate.hasCutSets = true;
    } else if (!gate.isObservable) {
        gate.cause = AllOf(gate.cause, mStatus[child]); // the gate must be in error all the same
    }
}

void CheckFold::Finish(const Gate& gate)
{
    const FewestChecks cause = gate.hasCutSets ? gate.cause : NO;
    mHasCutSets[gate.place] = gate.hasCutSets;
    mStatus[gate.place] = gate.isObservable ? OfCheck(gate.place) : gate.status;
    mCause[gate.place] = gate.isObservable ? AllOf(mStatus[gate.place], cause) : cause;
}

std::vector<std::size_t> CheckFold::ChildrenBackwards(std::size_t place) const
{
    std::vector<std::size_t> children = mTree.ChildrenOf(place);
    std::reverse(children.begin(), children.end());
    return children;
}

CheckFold::Gate CheckFold::GateOf(std::size_t place) const
{
    Gate gate = EmptyGate(place);
    for (const std::size_t child : ChildrenBackwards(place)) {
        Add(child, gate);
    }
    return gate;
}

// Goes from the last event to the first, so that the events below a gate come before it. Only the gates of the events above
// the present one are unfinished: a stack of them is enough.
void CheckFold::Fold()
{
    std::vector<Gate> open;
    for (std::size_t place = mTree.events.size(); place-- != 0;) {
        if (!open.empty() && open.back().place == place) {
            Finish(open.back());
            open.pop_back();
        } else if (IsLeaf(place)) {
            FinishLeaf(place);
        } else {
            Finish(EmptyGate(place));
        }
        const std::size_t parent = At(place).parent;
        if (parent == NONE) {
            continue;
        }
        if (open.empty() || open.back().place != parent) {
            open.push_back(EmptyGate(parent));
        }
        Add(place, open.back());
    }
}

void CheckFold::Climb(std::size_t place)
{
    while (place != NONE) {
        const FewestChecks cause = mCause[place];
        const FewestChecks status = mStatus[place];
        if (IsLeaf(place)) {
            FinishLeaf(place);
        } else {
            Finish(GateOf(place));
        }
        if (cause == mCause[place] && status == mStatus[place]) {
            return;
        }
        place = At(place).parent;
    }
}

// What the question about a gate is asked of below it, in the order of the tree.
std::vector<CheckFold::Part> CheckFold::PartsOf(const Part& gate) const
{
    std::vector<Part> parts;
    bool isClosed = false;
    for (const std::size_t child : ChildrenBackwards(gate.place)) {
        Question question = gate.question;
        if (gate.question == Question::CAUSE && !IsOr(gate.place)) {
            isClosed = isClosed || !mHasCutSets[child];
            question = isClosed ? Question::STATUS : Question::CAUSE;
        }
        if (!isClosed || !At(gate.place).observable) {
            parts.push_back({child, question});
        }
    }
    std::reverse(parts.begin(), parts.end());
    return parts;
}

std::size_t CheckFold::Next() const
{
    if (!OfTree().IsOpen()) {
        return NONE;
    }
    Part part{0, OfCause().IsOpen() ? Question::CAUSE : Question::STATUS};
    while (!IsLeaf(part.place)) {
        const bool isObservable = At(part.place).observable;
        const bool isOr = IsOr(part.place);
        const auto isBetter = [this, isOr](const Part& one, const Part& other) {
            return isOr ? Of(one).toProve < Of(other).toProve : Of(one).toRuleOut < Of(other).toRuleOut;
        };
        const std::vector<Part> parts = PartsOf(part);
        // An event with rules of its own needs both these and its gate: whichever is ruled out with fewer checks.
        const FewestChecks own = isObservable ? OfCheck(part.place) : YES;
        const bool isOwnNext = isObservable
            && (part.question == Question::STATUS || own.toRuleOut <= GateOf(part.place).cause.toRuleOut);
        const auto best = std::min_element(parts.begin(), parts.end(), isBetter);
        if (isOwnNext || best == parts.end()) {
            return part.place;
        }
        part = *best;
    }
    return part.place;
}

const std::vector<std::size_t>& CheckFold::PlacesOf(std::string_view id)
{
    if (mPlaces.empty()) {
        for (std::size_t place = 0; place < mTree.events.size(); ++place) {
            if (At(place).check != Evidence::Check::NONE) {
                mPlaces[At(place).id].push_back(place);
            }
        }
    }
    static const std::vector<std::size_t> NOWHERE;
    const auto found = mPlaces.find(id);
    return found == mPlaces.end() ? NOWHERE : found->second;
}

void CheckFold::SetAnswer(std::string_view id, bool isPresent)
{
    mAnswers.resize(mTree.events.size(), NOT_YET);
    for (const std::size_t place : PlacesOf(id)) {
        mAnswers[place] = isPresent ? TRUE_NOW : FALSE_NOW;
    }
}

void CheckFold::Answer(std::string_view id, bool isPresent)
{
    static constexpr std::size_t FEW = 8;
    SetAnswer(id, isPresent);
    const std::vector<std::size_t>& places = PlacesOf(id);
    if (places.size() > FEW) {
        Fold(); // the ways up would be counted over and over
        return;
    }
    for (const std::size_t place : places) {
        Climb(place);
    }
}

void CheckFold::AnswerAll(const std::vector<std::string_view>& ids, bool isPresent)
{
    for (const std::string_view id : ids) {
        SetAnswer(id, isPresent);
    }
    Fold();
}

} // namespace diagnosis
