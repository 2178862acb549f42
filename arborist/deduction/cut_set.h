#ifndef ARBORIST_DEDUCTION_CUT_SET_H
#define ARBORIST_DEDUCTION_CUT_SET_H

#include <string>
#include <vector>

/// Events that together make the top event true, in the order of expansion, each by its path: the ids from the top event
/// down to it, joined by "/".
using CutSet = std::vector<std::string>;
/// The cut sets of a tree in the order of expansion; supersets and duplicates stay, whatever the name says.
using MinimalCutSet = std::vector<CutSet>;

#endif
