#ifndef ARBORIST_TOOLS_RENDER_LINT_TEXT_H
#define ARBORIST_TOOLS_RENDER_LINT_TEXT_H

#include <string>

#include "diagnosis/lint/output/formats.h"

namespace diagnosis::command {

/// The findings of a run as text: each with its place, the check's title, message, line of the file with a caret if that
/// is known, help, and once for each check the effect at run time; then the counts.
std::string LintText(const lint::LintRun& run, bool isColoured);

/// All checks, a line each: id, severity, what the check needs beside the files, title.
std::string CheckListText();

/// A check: what it finds, the effect at run time, and its samples.
std::string CheckText(const lint::Check& check);

} // namespace diagnosis::command

#endif
