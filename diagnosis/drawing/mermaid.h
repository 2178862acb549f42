#ifndef ARBORIST_DIAGNOSIS_DRAWING_MERMAID_H
#define ARBORIST_DIAGNOSIS_DRAWING_MERMAID_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// The trees as a Mermaid flow chart, which many readers of Markdown draw. Shapes and statuses are those of Dot, except
/// that an AND gate is a trapezium.
std::string Mermaid(const std::vector<DrawnTree>& trees);

} // namespace diagnosis

#endif
