#ifndef ARBORIST_DIAGNOSIS_LINT_BASELINE_H
#define ARBORIST_DIAGNOSIS_LINT_BASELINE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/finding.h"

namespace diagnosis::lint {

/// The known findings of a rule set, so that only new ones are reported. A file of sorted lines, each with check, file,
/// element and number, separated by tabs. It has no line numbers, so that it stays valid when lines move.
class Baseline {
public:
    /// Reads a file; nothing, with the reason in `problem`, if it can't be read or has a line of another form.
    static std::optional<Baseline> Read(const std::string& path, std::string& problem);
    /// The text of a baseline of these findings. `path` is the path of the baseline; paths in it are relative to its
    /// folder.
    static std::string TextOf(const std::vector<Finding>& findings, const std::string& path);

    /// Removes the known findings and returns their number.
    std::size_t Filter(std::vector<Finding>& findings);

private:
    std::string mPath;
    /// The numbers by the rest of the line.
    std::map<std::string, std::size_t> mKnown;
};

} // namespace diagnosis::lint

#endif
