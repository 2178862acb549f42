#ifndef ARBORIST_EVALUATION_TREE_CHECKS_H
#define ARBORIST_EVALUATION_TREE_CHECKS_H

#include <string>
#include <unordered_map>
#include <vector>

#include "arborist/evaluation/event_check.h"
#include "arborist/frame/evidence.h"

class Event;
class EventRule;

/// The checks of the events of one tree after the other, in pre-order.
class TreeChecks {
public:
    /// Forgets what earlier detections found.
    void StartDetection() { mTrueChecks.clear(); }
    /// Forgets the tree before.
    void StartTree();

    /// The next event has no entry in the event rules.
    void AddWithoutEntry(const Event& event);
    /// The detection was stopped before the next event was decided; it has an entry.
    void AddStopped(const Event& event);
    /// The next event was decided by this entry; `eventCheck` has what its alternatives came to. Completes the record.
    void AddDecided(const Event& event, const EventRule* entry, const EventCheck& eventCheck, Evidence::Event& record);

    /// The check with which this entry was found true before in this detection; NONE if it wasn't.
    Evidence::Check GetTrueCheck(const EventRule* entry) const;

    /// One for each event, NONE for those without.
    const std::vector<Evidence::Check>& GetChecks() const { return mChecks; }
    /// What a tree with these counts names as open: its open checks; where nothing is open and nothing decided, those
    /// that were not selected, or the top event of a tree without checks.
    std::vector<Evidence::OpenCheck> ListOpen(const Evidence::CheckCounts& counts) const;

private:
    Evidence::OpenCheck WordOf(
        const EventRule* entry, const EventCheck::Word& word, const Evidence::Event& record) const;
    void Add(Evidence::OpenCheck check);

    std::vector<Evidence::Check> mChecks;
    /// Those that are no answer: open, or not selected.
    std::vector<Evidence::OpenCheck> mUnanswered;
    std::string mTopId;
    /// An entry that was true once stays true, in this tree and all others.
    std::unordered_map<const EventRule*, Evidence::OpenCheck> mTrueChecks;
};

#endif
