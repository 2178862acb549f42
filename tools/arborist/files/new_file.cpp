#include "tools/arborist/files/new_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace command {

NewFile::~NewFile()
{
    if (!mTemporary.empty()) {
        unlink(mTemporary.c_str());
    }
}

std::optional<std::string> NewFile::Make(const std::string& path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return "is a folder";
    }
    std::string temporary = path + ".XXXXXX";
    const int file = mkstemp(temporary.data());
    if (file < 0) {
        return std::string("can't be written: ") + std::strerror(errno);
    }
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(file, 0666 & ~mask);
    close(file);
    mPath = path;
    mTemporary = temporary;
    return std::nullopt;
}

std::optional<std::string> NewFile::PutInPlace()
{
    if (std::rename(mTemporary.c_str(), mPath.c_str()) != 0) {
        return std::string("can't be put in place: ") + std::strerror(errno);
    }
    mTemporary.clear();
    return std::nullopt;
}

} // namespace command
