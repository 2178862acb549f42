#ifndef ARBORIST_TOOLS_RENDER_NEXT_TEXT_H
#define ARBORIST_TOOLS_RENDER_NEXT_TEXT_H

#include <cstddef>
#include <string>

#include "diagnosis/evidence/recorded_tree.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// The first `most` checks to close of an undecided tree, each on a line; empty for another tree.
std::string NextChecksText(const TreeReport& report, std::size_t most, Colour colour);

/// What is missing that would decide undecided trees, each on a line.
std::string MissingSourcesText(const TreeReports& reports, Colour colour);

} // namespace diagnosis::command

#endif
