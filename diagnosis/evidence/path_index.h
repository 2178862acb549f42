#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_PATH_INDEX_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_PATH_INDEX_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diagnosis/evidence/explanation.h"

namespace diagnosis {

/// Finds the events of a tree by their paths, ids from the top down joined by "/" as cut sets name their members.
/// Whatever the ids hold, the work grows with the length of the texts alone.
class PathIndex {
public:
    /// `events` in pre-order, which must outlive the index and stay as they are.
    explicit PathIndex(const std::vector<ExplainedEvent>& events);

    /// Of several places with that path the first that is in error with all above it, as members of cut sets in
    /// evidence are; without such a one the first. NONE when no place has it.
    std::size_t Find(std::string_view path) const;

private:
    bool IsPathOf(std::size_t event, std::string_view path) const;

    const std::vector<ExplainedEvent>& mEvents;
    std::unordered_map<std::uint64_t, std::size_t> mPlaces;
};

} // namespace diagnosis

#endif
