#ifndef ARBORIST_TOOLS_COMMANDS_LINT_FIXES_H
#define ARBORIST_TOOLS_COMMANDS_LINT_FIXES_H

#include <string>
#include <vector>

#include "diagnosis/lint/fixes.h"

namespace diagnosis::command {

/// Fixes of rule sets, after the tests of the rule sets were asked.
struct TestedFixes {
    /// Those that may be made.
    std::vector<lint::FileFix> fixes;
    /// For each folder whose fixes are refused, why.
    std::vector<std::string> refused;
    /// For each folder of which some cases may not have been found, a message.
    std::vector<std::string> notes;
};

/// Tries the fixes on copies of the rule sets. Refuses those of a folder if one of its cases would answer otherwise: a
/// case of this rule set (*.test.json) below it, below the folder that contains it, or in `tests`, which are case files and
/// folders. A rule set without cases refuses nothing.
TestedFixes TestFixes(std::vector<lint::FileFix> fixes, const std::vector<std::string>& tests);

} // namespace diagnosis::command

#endif
