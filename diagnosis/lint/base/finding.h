#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_FINDING_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_FINDING_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/check.h"
#include "diagnosis/rule_source/sections.h"

namespace diagnosis::lint {

/// A change of a file that fixes a finding.
struct Edit {
    /// Position in the file's text, in bytes.
    std::size_t offset = 0;
    std::size_t length = 0;
    /// The text at this position.
    std::string old;
    /// Its replacement.
    std::string text;
    /// True if the engine reads the same afterwards.
    bool isSafe = false;
    /// The path of the file, mostly that of the finding. All edits of a finding are in one file.
    std::string file = {};
};

/// A problem that a check has found in a rule set, with its place.
struct Finding {
    const Check* check = nullptr;
    std::string file;
    /// From 1; 0 for a finding about a file as a whole.
    int line = 0;
    /// The characters that a caret points at, from 1; 0 if they are not known.
    int column = 0;
    int columns = 0;
    /// The line of the file.
    std::string source;
    /// Its place as a path of names, "EventRules/Laptop/Event[WORN]", which doesn't change when lines move.
    std::string element;
    /// The names of the rule and the event in which it lies; empty outside, and unless asked for.
    std::string rule;
    std::string event;
    std::string message;
    /// What to do about it; may be empty.
    std::string help;
    /// The section that the rule file lacks, or lacks for the tag.
    std::optional<rule_source::SectionKind> absent;
    /// Unique for each finding, and the same in every run as long as check, file, element and message are the same. Empty
    /// unless asked for.
    std::string fingerprint;
    std::vector<Edit> edits;
};

/// By file, line, column and check.
bool IsBefore(const Finding& one, const Finding& other);

} // namespace diagnosis::lint

#endif
