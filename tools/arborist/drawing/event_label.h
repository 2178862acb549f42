#ifndef ARBORIST_TOOLS_DRAWING_EVENT_LABEL_H
#define ARBORIST_TOOLS_DRAWING_EVENT_LABEL_H

#include <string>
#include <vector>

#include "tools/arborist/drawing/drawn_tree.h"

namespace command {

/// What stands in the box of an event, as printable lines: the id, the name, and after a run the status.
std::vector<std::string> EventLabel(const DrawnTree& tree, std::size_t place);

/// The id for people: an absent one still needs something to see.
std::string ShownId(const std::string& id);

} // namespace command

#endif
