#ifndef ARBORIST_DIAGNOSIS_DRAWING_EVENT_LABEL_H
#define ARBORIST_DIAGNOSIS_DRAWING_EVENT_LABEL_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// What stands in the box of an event, as printable lines: the id, the name, and after a run the status.
std::vector<std::string> EventLabel(const DrawnTree& tree, std::size_t place);

/// The status and what the event has to do with root causes: "TRUE, ROOT CAUSE".
std::string StatusWords(const DrawnTree& tree, std::size_t place);

/// "true", "false" or "unknown" after a run, otherwise nothing: the style of the event on a page.
const char* StatusClass(const DrawnTree& tree, std::size_t place);

/// "basic", "undeveloped", or an intermediate event with its gate: "OR gate".
std::string KindWords(const Evidence::FoldedEvent& event);

/// The id for people: an absent one still needs something to see.
std::string ShownId(const std::string& id);

} // namespace diagnosis

#endif
