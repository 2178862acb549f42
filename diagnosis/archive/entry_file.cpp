#include "diagnosis/archive/entry_file.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace diagnosis {

bool IsNameOfSystem(const std::string&)
{
    return true;
}

EntryFile::EntryFile(const std::filesystem::path& path)
    : mDescriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600))
{
}

EntryFile::~EntryFile()
{
    if (IsOpen()) {
        close(mDescriptor);
    }
}

bool EntryFile::Write(const char* bytes, std::size_t length)
{
    while (length > 0) {
        const ssize_t written = write(mDescriptor, bytes, length);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        const auto done = static_cast<std::size_t>(written > 0 ? written : 0);
        bytes += done;
        length -= done;
    }
    return true;
}

} // namespace diagnosis
