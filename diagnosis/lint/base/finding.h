#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_FINDING_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_FINDING_H

#include <cstddef>
#include <string>
#include <vector>

#include "diagnosis/lint/base/check.h"

namespace diagnosis::lint {

/// A change of a file that mends a finding.
struct Edit {
    /// In bytes of the file's text.
    std::size_t offset = 0;
    std::size_t length = 0;
    /// What stands there.
    std::string old;
    /// What is to stand there.
    std::string text;
    /// Whether the engine reads the same afterwards.
    bool isSafe = false;
};

/// A place in a rule set where a check found what it looks for.
struct Finding {
    const Check* check = nullptr;
    std::string file;
    /// From 1; 0 for a finding about a file as a whole.
    int line = 0;
    /// The characters that a caret points at, from 1; 0 where they are not known.
    int column = 0;
    int columns = 0;
    /// The line of the file.
    std::string source;
    /// Where it is by names, without lines: "EventRules/Laptop/Event[WORN]". Stays the same when lines move.
    std::string element;
    std::string message;
    /// What to do about it; may be empty.
    std::string help;
    /// The same from run to run as long as check, file, element and message are, and different for each finding.
    std::string fingerprint;
    std::vector<Edit> edits;
};

/// By file, line, column and check.
bool IsBefore(const Finding& one, const Finding& other);

} // namespace diagnosis::lint

#endif
