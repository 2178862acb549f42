#ifndef ARBORIST_DEDUCTION_ERROR_IDS_H
#define ARBORIST_DEDUCTION_ERROR_IDS_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "arborist/utilities/text_hash.h"

class Event;

/// Tells whether the paths of the events below one gate are their own. Keeps its memory from gate to gate.
class ErrorIds {
public:
    using Events = std::vector<std::shared_ptr<Event>>;
    /// Places in such a list.
    using Indexes = std::vector<std::size_t>;

    /// Whether no id of `events` holds a "/" or "&", and none of those `inError` has an id that another one has, too.
    bool AreUnambiguous(const Events& events, const Indexes& inError);

private:
    bool AreUnambiguousAmongMany(const Events& events, const Indexes& inError);
    bool Add(const Event& event);
    bool IsMarked(const Event& event) const;

    /// Marks the sketch of every id in mIds, so that most others are told apart without looking at their ids.
    std::vector<unsigned char> mMarks;
    std::unordered_set<std::string_view, TextHash> mIds;
};

#endif
