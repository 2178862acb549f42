#ifndef ARBORIST_DEDUCTION_CUT_SET_H
#define ARBORIST_DEDUCTION_CUT_SET_H

#include <string>
#include <vector>

/// Events that together make the top event true, in the order of expansion. A member is given by its path: the ids from
/// the top event down to it, joined by "/".
using CutSet = std::vector<std::string>;
/// The cut sets of a tree in the order of expansion. Despite the name it includes supersets and duplicates.
using MinimalCutSet = std::vector<CutSet>;

#endif
