#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_CUT_FORMULA_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_CUT_FORMULA_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// The cut sets of a tree as a formula of OR and AND over events. Equal branches, such as a branch that the tree
/// repeats in many places, share one node. The cut sets are those of the library's plain expansion.
///
/// Events with the same id are one event. An observable intermediate event that is not in error is joined by AND with
/// the events below it, as it must come into error by itself.
class CutFormula {
public:
    enum class Kind : unsigned char { EVENT, OR, AND };

    struct Part {
        std::uint32_t node;
        /// How many equal branches of an AND this part replaces; each chooses from it independently.
        std::uint32_t times = 1;
    };

    struct Node {
        Kind kind;
        /// For an EVENT: an index into RecordedTree::events, of the first with that id and status.
        std::size_t event;
        bool isMissing;
        /// The parts of a gate, each once.
        std::vector<Part> parts;
        /// A lower bound of the missing events of a choice below. An event with n places in the tree counts 1/n in
        /// each, so that the bounds of joined gates may be added.
        double least;
    };

    static constexpr std::uint32_t NONE = UINT32_MAX;

    explicit CutFormula(const RecordedTree& tree);

    /// NONE for a tree without cut sets.
    std::uint32_t GetTop() const { return mTop; }
    /// Every part precedes the gates that contain it.
    const std::vector<Node>& GetNodes() const { return mNodes; }

private:
    void FindEmpty();
    void CountPlaces();
    std::uint32_t Build(std::size_t event);
    void CollectParts(std::size_t event, Kind kind, std::vector<std::uint32_t>& parts);
    std::vector<std::size_t> BranchesOf(std::size_t event) const;
    std::uint32_t MakeEvent(std::size_t event);
    std::uint32_t MakeGate(Kind kind, const std::vector<std::uint32_t>& branches);
    std::uint32_t Intern(const std::string& key, Node node);
    bool IsBarred(const RecordedEvent& event) const { return event.observable && !event.IsInError(); }

    const RecordedTree& mTree;
    /// True if the expansion of an event has no cut set, whatever the statuses.
    std::vector<bool> mIsEmpty;
    std::unordered_map<std::string, std::size_t> mPlacesMissing;
    std::unordered_map<std::string, std::uint32_t> mKnown;
    std::vector<Node> mNodes;
    std::uint32_t mTop = NONE;
};

} // namespace diagnosis

#endif
