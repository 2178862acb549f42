#ifndef ARBORIST_TOOLS_TERMINAL_WIDTH_H
#define ARBORIST_TOOLS_TERMINAL_WIDTH_H

#include <cstddef>
#include <string>

namespace diagnosis::command {

/// Breaks lines of a help text that are longer than `width` columns between words. Continuation lines are indented to
/// the description, which begins behind the first gap of two blanks, as in "  --json    One JSON object". Lines of
/// examples, which are indented and have no gap, are not broken, so that they can be copied.
std::string WrapHelp(const std::string& help, std::size_t width);

} // namespace diagnosis::command

#endif
