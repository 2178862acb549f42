#include "diagnosis/text/input_lines.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>

namespace diagnosis {

InputLines::InputLines(const std::string& path) : mPath(path), mLines(path == "-" ? std::cin : mFile)
{
    if (path == "-") {
        return;
    }
    std::error_code error;
    errno = 0;
    mFile.open(path, std::ios::binary);
    if (std::filesystem::is_directory(path, error)) {
        mProblem = path + ": can't be read: is a folder";
    } else if (!mFile) {
        mProblem = path + ": can't be read: " + std::strerror(errno);
    }
}

bool InputLines::Next()
{
    if (!mProblem.empty()) {
        return false;
    }
    errno = 0;
    while (mLines.Next()) {
        if (mLines.IsTooLong() || mLines.Line().find_first_not_of(" \t\r") != std::string_view::npos) {
            return true;
        }
    }
    const bool isStandardInput = mPath == "-";
    if (isStandardInput ? std::cin.bad() || std::ferror(stdin) != 0 : mFile.bad()) {
        mProblem = mPath + ": can't be read" + (errno == 0 ? "" : std::string(": ") + std::strerror(errno));
    }
    return false;
}

} // namespace diagnosis
