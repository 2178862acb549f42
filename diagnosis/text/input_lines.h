#ifndef ARBORIST_DIAGNOSIS_TEXT_INPUT_LINES_H
#define ARBORIST_DIAGNOSIS_TEXT_INPUT_LINES_H

#include <cstddef>
#include <fstream>
#include <istream>
#include <string>

namespace diagnosis {

/// The lines of a text file that are not blank, one after the other.
class InputLines {
public:
    /// Opens a file; "-" stands for standard input. A folder can't be read.
    explicit InputLines(const std::string& path);

    /// Moves to the next line. False at the end, and where the file can't be read.
    bool Next();
    /// The line without its line end, valid until Next.
    const std::string& Line() const { return mLine; }
    /// "FILE:12", the place of the line.
    std::string Place() const { return mPath + ":" + std::to_string(mNumber); }
    /// True if the file could not be opened, or not be read to its end.
    bool HasFailed() const;

private:
    std::string mPath;
    std::ifstream mFile;
    std::istream* mLines;
    std::string mLine;
    std::size_t mNumber = 0;
    bool mIsOpen = true;
};

} // namespace diagnosis

#endif
