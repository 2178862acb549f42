#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_RECORDED_PATH_INDEX_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_RECORDED_PATH_INDEX_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// Finds the events of a tree by their paths: ids from the top down joined by "/", as cut sets name their members.
/// Takes time proportional to the length of the texts, whatever the ids are.
class RecordedPathIndex {
public:
    /// `events` must be in pre-order, must not change and must outlive the index.
    explicit RecordedPathIndex(const std::vector<RecordedEvent>& events);

    /// The event with this path. Of several, the first that is in error together with all events above it, as members
    /// of cut sets in evidence are; if there is none, the first. NONE if no event has the path.
    std::size_t Find(std::string_view path) const;

private:
    bool IsPathOf(std::size_t event, std::string_view path) const;

    const std::vector<RecordedEvent>& mEvents;
    std::unordered_map<std::uint64_t, std::size_t> mPlaces;
};

} // namespace diagnosis

#endif
