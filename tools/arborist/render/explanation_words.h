#ifndef ARBORIST_TOOLS_RENDER_EXPLANATION_WORDS_H
#define ARBORIST_TOOLS_RENDER_EXPLANATION_WORDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// "1 event", "2 events".
std::string Counted(std::uint64_t number, const std::string& one, const std::string& several);

/// How often a cut set occurs in the list of root causes, after two blanks; empty if it occurs once.
std::string TimesText(std::uint64_t times, Colour colour);

/// TRUE, FALSE or SKIP in the colour of the verdict.
std::string VerdictText(const Evidence::Rule& rule, Colour colour);

/// The verdict of a tree as VerdictWords: green for an answer alone, yellow where there is none, plain for a fault, which
/// has its own word in front.
std::string ColouredVerdict(const Evidence::TreeVerdict& verdict, Colour colour);

/// The status of an event in its colour, with blanks up to `width`.
std::string ColouredStatus(Evidence::EventState status, std::size_t width, Colour colour);

/// The ids of the events at these indexes of a tree.
std::vector<std::string> IdsAt(const RecordedTree& tree, const std::vector<std::size_t>& places);

} // namespace diagnosis::command

#endif
