#ifndef ARBORIST_TOOLS_RENDER_LINT_TEXT_H
#define ARBORIST_TOOLS_RENDER_LINT_TEXT_H

#include <string>

#include "diagnosis/lint/output/formats.h"

namespace diagnosis::command {

/// The findings of a run for people: each with place, message, its line of the file with a caret where that is known,
/// help, and once for each check what happens at run time; at the end the counts.
std::string LintText(const lint::LintRun& run, bool isColoured);

/// All checks, a line each: id, severity, what is needed beside the files, title.
std::string CheckListText();

/// A check with what it finds, what happens at run time, and its samples.
std::string CheckText(const lint::Check& check);

} // namespace diagnosis::command

#endif
