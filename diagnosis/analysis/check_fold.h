#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_CHECK_FOLD_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_CHECK_FOLD_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// How few answers of open checks settle a question.
struct FewestChecks {
    static constexpr std::uint32_t NEVER = UINT32_MAX;

    /// How many would have to come out true for yes: 0 if it is yes already, NEVER if it can't be.
    std::uint32_t toProve = NEVER;
    /// How many would have to come out false for no: 0 if it is no already, NEVER if it can't be.
    std::uint32_t toRuleOut = 0;

    bool IsOpen() const { return toProve != 0 && toRuleOut != 0; }

    bool operator==(const FewestChecks&) const = default;
};

/// Whether the answer of a rule is not known: its check is open, or its group had ended before it.
bool IsUnanswered(const Evidence::Rule& rule);

/// Counts for each event of a tree how few open checks would make it a fault, and how few would rule it out.
///
/// A fault is a cut set whose members, and all events above them, are in error. An OR gate is proven by one event below it
/// and ruled out by all, an AND gate the other way round, and an event with rules of its own needs these and its gate. An
/// event below counts as often as it occurs: the numbers are the fewest if no id occurs twice, and otherwise no
/// fewer than needed. Makes one pass over the events, without recursion. Refers to the tree.
class CheckFold {
public:
    static constexpr std::size_t NONE = RecordedEvent::NONE;

    explicit CheckFold(const RecordedTree& tree);

    /// Whether the top event has a root cause.
    FewestChecks OfCause() const { return mCause.empty() ? FewestChecks{} : mCause[0]; }
    /// Whether the top event is in error, with or without a root cause.
    FewestChecks OfStatus() const { return mStatus.empty() ? FewestChecks{} : mStatus[0]; }
    /// What is open of the tree: whether there is a root cause, or else whether its top event is in error.
    FewestChecks OfTree() const { return OfCause().IsOpen() ? OfCause() : OfStatus(); }

    /// Whether there is a root cause, or the top event is not in error, whatever the open checks come out as. False if
    /// the top event is in error and no cut set can explain it.
    bool IsDecided() const { return OfCause().toProve == 0 || OfStatus().toRuleOut == 0; }
    /// How few answers settle the check of this event itself, as its rules have it: without its gate.
    FewestChecks OfCheck(std::size_t place) const;

    /// The event whose open check to close next: it is among the fewest that prove what is open of the tree, and among the
    /// fewest that rule it out. NONE if nothing is open.
    std::size_t Next() const;

    /// Takes the check of an event id for answered, at all its places; another answer replaces the first. Counts only the
    /// events on the ways from there to the top anew.
    void Answer(std::string_view id, bool isPresent);
    /// The same for many ids, in one pass over the tree.
    void AnswerAll(const std::vector<std::string_view>& ids, bool isPresent);

private:
    /// What is counted: whether there is a root cause below an event, or whether it is in error.
    enum class Question : unsigned char { CAUSE, STATUS };

    /// A gate while the events below it are added, from the last to the first.
    struct Gate {
        std::size_t place;
        bool isOr;
        bool isObservable;
        FewestChecks cause;
        FewestChecks status;
        bool hasCutSets = false;
        /// For an AND gate: an event without cut sets was added, before which no cut set counts.
        bool isClosed = false;
    };

    /// An event below a gate, and what of it counts for the question about the gate.
    struct Part {
        std::size_t place;
        Question question;
    };

    const RecordedEvent& At(std::size_t place) const { return mTree.events[place]; }
    const FewestChecks& Of(const Part& part) const
    {
        return part.question == Question::CAUSE ? mCause[part.place] : mStatus[part.place];
    }
    bool IsOr(std::size_t place) const { return At(place).gate == Evidence::GateType::OR; }
    bool IsLeaf(std::size_t place) const;
    Gate EmptyGate(std::size_t place) const;
    void Add(std::size_t child, Gate& gate) const;
    void FinishLeaf(std::size_t leaf) { mCause[leaf] = mStatus[leaf] = OfCheck(leaf); }
    void Finish(const Gate& gate);
    std::vector<std::size_t> ChildrenBackwards(std::size_t place) const;
    Gate GateOf(std::size_t place) const;
    std::vector<Part> PartsOf(const Part& gate) const;
    void Fold();
    void Climb(std::size_t place);
    const std::vector<std::size_t>& PlacesOf(std::string_view id);
    void SetAnswer(std::string_view id, bool isPresent);

    const RecordedTree& mTree;
    std::vector<FewestChecks> mCause;
    std::vector<FewestChecks> mStatus;
    std::vector<bool> mHasCutSets;
    /// Empty before the first answer.
    std::vector<unsigned char> mAnswers;
    /// The places of each id with a check, from the first answer on.
    std::unordered_map<std::string_view, std::vector<std::size_t>> mPlaces;
};

} // namespace diagnosis

#endif
