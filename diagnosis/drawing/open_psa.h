#ifndef ARBORIST_DIAGNOSIS_DRAWING_OPEN_PSA_H
#define ARBORIST_DIAGNOSIS_DRAWING_OPEN_PSA_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// The trees in the Open-PSA Model Exchange Format, for tools that compute probabilities and importance.
///
/// Each intermediate event is a gate of its own, equal ids included; all basic events of one id are one basic event.
/// Names are the ids if these consist of letters, digits and "_"; see EscapedName for others. Leaves out statuses.
std::string OpenPsa(const std::vector<DrawnTree>& trees);

} // namespace diagnosis

#endif
