#include "arborist/utilities/platform.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <locale.h>
#include <pthread.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/sysmacros.h>
#endif
#include <unistd.h>

namespace {

// Opening a device can have effects: a watchdog starts to count, a tape winds back. Opening these has none.
bool IsMemoryDevice(const struct stat& status)
{
#ifdef __linux__
    constexpr unsigned int MEMORY_DEVICES = 1;
    if (!S_ISCHR(status.st_mode) || major(status.st_rdev) != MEMORY_DEVICES) {
        return false;
    }
    switch (minor(status.st_rdev)) {
    case 3: // null
    case 5: // zero
    case 7: // full
    case 8: // random
    case 9: // urandom
        return true;
    default:
        return false;
    }
#else
    (void)status;
    return false;
#endif
}

// Created once and never freed. Every system has a locale of this name.
locale_t PlainLocale()
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

} // namespace

void Platform::NameThread(const std::string& name)
{
#ifdef __linux__
    constexpr std::size_t LONGEST_NAME = 15; // the kernel refuses a longer one
    pthread_setname_np(pthread_self(), name.substr(0, LONGEST_NAME).c_str());
#else
    (void)name;
#endif
}

float Platform::StrToFloat(const char* text, char** end)
{
    return strtof_l(text, end, PlainLocale());
}

double Platform::StrToDouble(const char* text, char** end)
{
    return strtod_l(text, end, PlainLocale());
}

Platform::FileIdentity::FileIdentity(const std::string& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0) {
        return;
    }
    mIsSet = true;
    mMarks = {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
        static_cast<std::int64_t>(status.st_size), static_cast<std::int64_t>(status.st_mtim.tv_sec),
        static_cast<std::int64_t>(status.st_mtim.tv_nsec), static_cast<std::int64_t>(status.st_ctim.tv_sec),
        static_cast<std::int64_t>(status.st_ctim.tv_nsec)};
}

Platform::InputFile::InputFile(const std::string& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !(S_ISREG(status.st_mode) || IsMemoryDevice(status))) {
        return;
    }
    // Non-blocking, as some files of procfs block like pipes.
    mDescriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    mSize = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

Platform::InputFile::~InputFile()
{
    if (IsOpen()) {
        close(mDescriptor);
    }
}

std::ptrdiff_t Platform::InputFile::Read(char* buffer, std::size_t length)
{
    std::ptrdiff_t got = 0;
    do {
        got = read(mDescriptor, buffer, length);
    } while (got < 0 && errno == EINTR);
    return got;
}
