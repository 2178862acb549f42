#ifndef ARBORIST_DIAGNOSIS_TEXT_INPUT_LINES_H
#define ARBORIST_DIAGNOSIS_TEXT_INPUT_LINES_H

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

#include "diagnosis/text/bounded_lines.h"

namespace diagnosis {

/// The lines of a text file that are not blank, one after the other.
class InputLines {
public:
    /// Opens a file; "-" stands for standard input. A folder can't be read.
    explicit InputLines(const std::string& path);

    /// Moves to the next line. False at the end, and where the file can't be read.
    bool Next();
    /// The line without its line feed, valid until Next.
    std::string_view Line() const { return mLines.Line(); }
    /// Why the line can't be used, which is empty then: it is longer than LONGEST_LINE. Null for all others.
    const char* LineProblem() const { return mLines.IsTooLong() ? LINE_TOO_LONG : nullptr; }
    /// "FILE:12", the place of the line.
    std::string Place() const { return mPath + ":" + std::to_string(mLines.Number()); }
    /// "FILE: can't be read: REASON" if the file could not be opened, or not be read to its end; otherwise empty.
    const std::string& Problem() const { return mProblem; }

private:
    std::string mPath;
    std::ifstream mFile;
    BoundedLines mLines;
    std::string mProblem;
};

} // namespace diagnosis

#endif
