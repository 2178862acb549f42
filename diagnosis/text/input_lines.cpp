#include "diagnosis/text/input_lines.h"

#include <cstdio>
#include <filesystem>
#include <iostream>

namespace diagnosis {

InputLines::InputLines(const std::string& path) : mPath(path), mLines(path == "-" ? &std::cin : &mFile)
{
    if (mLines == &mFile) {
        std::error_code error;
        mFile.open(path, std::ios::binary);
        mIsOpen = mFile && !std::filesystem::is_directory(path, error);
    }
}

bool InputLines::Next()
{
    while (mIsOpen && std::getline(*mLines, mLine)) {
        ++mNumber;
        if (mLine.find_first_not_of(" \t\r") != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool InputLines::HasFailed() const
{
    return !mIsOpen || mLines->bad() || (mLines == &std::cin && std::ferror(stdin) != 0);
}

} // namespace diagnosis
