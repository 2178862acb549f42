#ifndef ARBORIST_DIAGNOSIS_DRAWING_GRAPHVIZ_H
#define ARBORIST_DIAGNOSIS_DRAWING_GRAPHVIZ_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Draws `graph` as SVG with Graphviz's program `dot` from PATH. Returns the failure if it is not installed
/// ("no_graphviz", wrong use) or has failed ("graphviz"); its own messages go to standard error.
std::optional<Failure> DrawWithGraphviz(const std::string& graph, std::string& svg);

} // namespace diagnosis

#endif
