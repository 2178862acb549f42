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

/// Decides for one gate after another whether each event below it has a path of its own. Reuses its memory.
class ErrorIds {
public:
    using Events = std::vector<std::shared_ptr<Event>>;
    /// Positions in such a list.
    using Indexes = std::vector<std::size_t>;

    /// True if no id of `events` contains "/" or "&", and no event of `inError` shares its id with another one.
    bool AreUnambiguous(const Events& events, const Indexes& inError);

private:
    bool AreUnambiguousAmongMany(const Events& events, const Indexes& inError);
    bool Add(const Event& event);
    bool IsMarked(const Event& event) const;

    /// A filter over mIds: the sketch of each of its ids is marked. An id whose sketch isn't marked is not in mIds,
    /// which settles most ids without a look-up.
    std::vector<unsigned char> mMarks;
    std::unordered_set<std::string_view, TextHash> mIds;
};

#endif
