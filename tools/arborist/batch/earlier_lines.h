#ifndef ARBORIST_TOOLS_BATCH_EARLIER_LINES_H
#define ARBORIST_TOOLS_BATCH_EARLIER_LINES_H

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/arborist/batch/batch.h"

namespace diagnosis::command {

/// The lines of an earlier run that are still valid for the bundles of a list, so that these need not be run again.
///
/// A line is taken for the first bundle of the list that has its name and no line yet. Lines are left out if their error is
/// worth a retry or their bundle is not in the list, and a last line without its end, which the earlier run could not
/// finish. The lines stay in their file; an answer is read when it is taken.
class EarlierLines {
public:
    /// Reads the file; one that doesn't exist has no lines. Returns the reason, with the number of the line, if it
    /// can't be read, is no plain file, as only there lines can be read again, or has a line that is no result of a
    /// detection, as one longer than LONGEST_LINE is none.
    std::optional<std::string> Read(const std::string& path, const std::vector<std::string>& bundles);

    /// Numbers of bundles that have a line.
    std::size_t Count() const { return mLines.size(); }

    /// Sets the answer for a bundle by its number in the list, as its worker gave it, but with no status other than that
    /// of its error; nothing for a bundle without a line. False if its line can't be read again.
    bool AnswerOf(std::size_t bundle, std::optional<BundleAnswer>& answer);

private:
    struct Line {
        std::uint64_t start = 0;
        std::size_t length = 0;
        BundleAnswer answer;
    };

    std::ifstream mFile;
    std::unordered_map<std::size_t, Line> mLines;
};

} // namespace diagnosis::command

#endif
