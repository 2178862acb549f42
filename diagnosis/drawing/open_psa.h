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

/// Converts an id to a name that the format allows; different ids have different names. A byte that is not allowed (or
/// "_" before "x", or a digit at the front) becomes "_x" and its two hexadecimal digits; the empty id becomes "_x_".
std::string EscapedName(const std::string& id);

} // namespace diagnosis

#endif
