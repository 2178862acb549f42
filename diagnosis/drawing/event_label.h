#ifndef ARBORIST_DIAGNOSIS_DRAWING_EVENT_LABEL_H
#define ARBORIST_DIAGNOSIS_DRAWING_EVENT_LABEL_H

#include <string>
#include <vector>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// The text in the box of an event, as printable lines: the id, the name, and after a run the status and its check
/// if that is open.
std::vector<std::string> EventLabel(const DrawnTree& tree, std::size_t place);

/// The status and the role of the event in root causes: "TRUE, ROOT CAUSE".
std::string StatusWords(const DrawnTree& tree, std::size_t place);

/// "open: no_data" for an event whose status is an assumption after a run, otherwise nothing.
std::string OpenWords(const DrawnTree& tree, std::size_t place);

/// The id of the tree, and behind it the verdict where the tree has one.
std::string TitleOf(const DrawnTree& tree);

/// The CSS class of the event's status: "true", "false" or "unknown" after a run, otherwise nothing.
const char* StatusClass(const DrawnTree& tree, std::size_t place);

/// "basic", "undeveloped", or an intermediate event with its gate: "OR gate".
std::string KindWords(const Evidence::FoldedEvent& event);

/// The id for people, with a replacement for an empty one.
std::string ShownId(const std::string& id);

} // namespace diagnosis

#endif
