#ifndef ARBORIST_DIAGNOSIS_LINT_BASELINE_H
#define ARBORIST_DIAGNOSIS_LINT_BASELINE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"

namespace diagnosis::lint {

/// Findings that a rule set is known to have, so that only new ones are told. A file of sorted lines, each with check,
/// file, element and number, divided by tabs; without line numbers, so that it stays good when lines move.
class Baseline {
public:
    /// Reads a file; nothing, with the reason in `problem`, when it can't be read or has a line of another form.
    static std::optional<Baseline> Read(const std::string& path, std::string& problem);
    /// What a baseline of these findings is to hold. `path` is where it will stand: files are told from its folder.
    static std::string TextOf(const std::vector<Finding>& findings, const std::string& path);

    /// Takes away the findings that are known, and answers how many those were.
    std::size_t Filter(std::vector<Finding>& findings);

private:
    std::string mPath;
    /// By everything of a line but the number.
    std::map<std::string, std::size_t> mKnown;
};

} // namespace diagnosis::lint

#endif
