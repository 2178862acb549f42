#ifndef ARBORIST_DIAGNOSIS_LINT_FIXES_H
#define ARBORIST_DIAGNOSIS_LINT_FIXES_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"

namespace diagnosis::lint {

/// The fixes of one file.
struct FileFix {
    std::string path;
    std::string before;
    std::string after;
    /// Number of findings that it mends; one may need several edits.
    std::size_t findings = 0;
    /// In order of their place, none overlapping another.
    std::vector<Edit> edits;
};

/// The fixes of all files that have some, in order of path; those that change what the engine reads only with
/// `withUnsafe`. Of overlapping edits takes the first; the next run finds the others. Leaves out a file that has
/// changed since it was linted, or that would not be well-formed afterwards.
std::vector<FileFix> FixesOf(const std::vector<Finding>& findings, bool withUnsafe);

/// The change of a fix in the format of "patch".
std::string DiffOf(const FileFix& fix);

/// Writes the fixed text into the file. Returns the reason if it can't.
std::optional<std::string> WriteFix(const FileFix& fix);

} // namespace diagnosis::lint

#endif
