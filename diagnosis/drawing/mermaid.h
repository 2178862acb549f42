#ifndef ARBORIST_DIAGNOSIS_DRAWING_MERMAID_H
#define ARBORIST_DIAGNOSIS_DRAWING_MERMAID_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// The trees as a Mermaid flow chart, which many readers of Markdown draw. Shapes and statuses as Dot has them, with
/// a trapezium for an AND gate.
std::string Mermaid(const std::vector<DrawnTree>& trees);

} // namespace diagnosis

#endif
