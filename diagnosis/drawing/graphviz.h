#ifndef ARBORIST_DIAGNOSIS_DRAWING_GRAPHVIZ_H
#define ARBORIST_DIAGNOSIS_DRAWING_GRAPHVIZ_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Has Graphviz's own program `dot`, found in PATH, draw `graph` as SVG. Otherwise answers why not: it is not
/// installed ("no_graphviz", wrong use) or has failed ("graphviz"); what it says itself goes to standard error.
std::optional<Failure> DrawWithGraphviz(const std::string& graph, std::string& svg);

} // namespace diagnosis

#endif
