#ifndef ARBORIST_DIAGNOSIS_DRAWING_OPEN_PSA_H
#define ARBORIST_DIAGNOSIS_DRAWING_OPEN_PSA_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// The trees in the Open-PSA Model Exchange Format, for the tools that work out probabilities and importance.
///
/// Each intermediate event is a gate of its own, equal ids included; all basic events of one id are one basic event.
/// Names are the ids where these are letters, digits and "_"; see EscapedName for the rest. Statuses are left out.
std::string OpenPsa(const std::vector<DrawnTree>& trees);

/// An id as a name that the format allows; different ids have different names. A byte that no name may hold (and "_"
/// before "x", and a digit in front) stands as "_x" with its two hexadecimal digits; the empty id is "_x_".
std::string EscapedName(const std::string& id);

} // namespace diagnosis

#endif
