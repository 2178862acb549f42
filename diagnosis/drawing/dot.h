#ifndef ARBORIST_DIAGNOSIS_DRAWING_DOT_H
#define ARBORIST_DIAGNOSIS_DRAWING_DOT_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// The trees in the DOT language of Graphviz: one directed graph with a cluster for each tree.
///
/// Boxes are intermediate events (a double border: decided by rules of its own), ellipses basic events, diamonds
/// undeveloped ones; a house is an AND gate, a hexagon an OR gate. Ids may contain any character.
std::string Dot(const std::vector<DrawnTree>& trees);

} // namespace diagnosis

#endif
