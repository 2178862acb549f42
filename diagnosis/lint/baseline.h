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
    /// Writes a baseline of these findings; paths in it are relative to its folder. Of an earlier baseline it keeps the
    /// comments above the first line, and each other comment as long as one of the lines is there that follow it up to
    /// the next comment. Returns the reason if the file can't be written, or is there and is no baseline.
    static std::optional<std::string> Write(const std::vector<Finding>& findings, const std::string& path);

    /// Removes the known findings and returns their number.
    std::size_t Filter(std::vector<Finding>& findings);

private:
    /// Lines of comments, and the keys of the lines that follow them up to the next comment.
    struct Passage {
        std::string comments;
        std::vector<std::string> keys;
    };

    bool ReadLine(const std::string& line);
    std::string Rewritten(const std::map<std::string, std::size_t>& counts) const;

    std::string mPath;
    /// In the file's order; the first one may have no comments.
    std::vector<Passage> mPassages = {{}};
    /// The numbers by the rest of the line.
    std::map<std::string, std::size_t> mKnown;
};

} // namespace diagnosis::lint

#endif
