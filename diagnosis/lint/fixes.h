#ifndef ARBORIST_DIAGNOSIS_LINT_FIXES_H
#define ARBORIST_DIAGNOSIS_LINT_FIXES_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"

namespace diagnosis::lint {

/// What mends some findings of one file.
struct FileFix {
    std::string path;
    std::string before;
    std::string after;
    /// In order of their place, none overlapping another.
    std::vector<Edit> edits;
};

/// The fixes of all files that have some, in order of path; those that change what the engine reads only where
/// `withUnsafe`. Of edits that overlap the first is taken: the next run finds what is left. Leaves out a file that is no
/// longer what was linted, and one that would not be well-formed afterwards.
std::vector<FileFix> FixesOf(const std::vector<Finding>& findings, bool withUnsafe);

/// The difference that a fix makes, as "patch" takes it.
std::string DiffOf(const FileFix& fix);

/// Puts the mended text in the file's place. Otherwise answers why not.
std::optional<std::string> WriteFix(const FileFix& fix);

} // namespace diagnosis::lint

#endif
