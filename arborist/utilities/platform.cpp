#include "arborist/utilities/platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <locale.h>
#include <pthread.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/sysmacros.h>
#endif
#include <unistd.h>

#include "arborist/frame/stopping.h"

namespace {

// A detection can stop between two such pieces.
constexpr std::size_t COPIED_AT_ONCE = 8 * 1024 * 1024;

/// Closes a descriptor at its end.
class Descriptor {
public:
    explicit Descriptor(int number) : mNumber(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return mNumber; }
    // False if what was written could not be stored.
    bool Close()
    {
        const int number = mNumber;
        mNumber = -1;
        return number < 0 || close(number) == 0;
    }

private:
    int mNumber;
};

bool WriteAll(int file, const char* bytes, std::size_t length)
{
    while (length != 0) {
        const ssize_t written = write(file, bytes, length);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes += std::max<ssize_t>(written, 0);
        length -= static_cast<std::size_t>(std::max<ssize_t>(written, 0));
    }
    return true;
}

// The number of bytes that the system itself copied, so that they need not pass through this process; 0 if it can't,
// and at the end of the file.
std::size_t CopyInSystem(int from, int to)
{
#ifdef __linux__
    return static_cast<std::size_t>(
        std::max<ssize_t>(copy_file_range(from, nullptr, to, nullptr, COPIED_AT_ONCE, 0), 0));
#else
    (void)from;
    (void)to;
    return 0;
#endif
}

// False on an error, and if the detection must end.
bool CopyToEnd(int from, int to)
{
    while (CopyInSystem(from, to) != 0) {
        if (StopPoint::IsDue()) {
            return false;
        }
    }
    constexpr std::size_t BLOCK = 128 * 1024;
    const auto block = std::make_unique_for_overwrite<char[]>(BLOCK);
    for (;;) {
        const ssize_t got = read(from, block.get(), BLOCK);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return got == 0;
        }
        if (StopPoint::IsDue() || !WriteAll(to, block.get(), static_cast<std::size_t>(got))) {
            return false;
        }
    }
}

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

bool Platform::LocalTime(std::int64_t seconds, std::tm& local)
{
    const std::time_t moment = seconds;
    return localtime_r(&moment, &local) != nullptr;
}

std::int64_t Platform::MomentOf(std::tm local)
{
    return std::mktime(&local);
}

bool Platform::Remove(const std::string& path)
{
    return std::remove(path.c_str()) == 0;
}

std::FILE* Platform::OpenFile(const std::string& path, const char* mode)
{
    return std::fopen(path.c_str(), (std::string(mode) + "e").c_str());
}

std::FILE* Platform::OpenForReading(const std::string& path)
{
    return OpenFile(path, "rb");
}

bool Platform::CopyContent(const std::string& source, const std::string& target)
{
    struct stat status;
    struct stat before;
    const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (from.Get() < 0 || fstat(from.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    if (stat(target.c_str(), &before) == 0 && before.st_dev == status.st_dev && before.st_ino == status.st_ino) {
        return false;
    }
    Descriptor to(open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, S_IWUSR));
    if (to.Get() < 0) {
        return false;
    }
    const bool isCopied = fchmod(to.Get(), status.st_mode & 07777) == 0 && CopyToEnd(from.Get(), to.Get());
    if (StopPoint::IsDue()) {
        unlink(target.c_str());
        StopPoint::Pass();
    }
    return to.Close() && isCopied;
}

struct Platform::Folder::Listing {
    explicit Listing(DIR* opened) : stream(opened) {}
    ~Listing() { closedir(stream); }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

    // Null without a stream.
    static std::unique_ptr<Listing> Of(DIR* stream)
    {
        if (stream == nullptr && errno == ENOMEM) {
            throw std::bad_alloc();
        }
        return stream == nullptr ? nullptr : std::make_unique<Listing>(stream);
    }

    DIR* stream;
    dirent* entry = nullptr;
};

Platform::Folder::Folder(const std::string& path) : Folder(Listing::Of(opendir(path.c_str()))) {}

Platform::Folder::Folder(std::unique_ptr<Listing> listing) : mListing(std::move(listing)) {}

Platform::Folder::Folder(Folder&& other) noexcept = default;

Platform::Folder::~Folder() = default;

Platform::Folder Platform::Folder::OpenEntry() const
{
    const int descriptor = openat(dirfd(mListing->stream), Name(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    DIR* const stream = descriptor < 0 ? nullptr : fdopendir(descriptor);
    if (descriptor >= 0 && stream == nullptr) {
        close(descriptor);
        errno = ENOMEM;
    }
    return Folder(Listing::Of(stream));
}

bool Platform::Folder::Next()
{
    do {
        errno = 0; // readdir leaves it alone at the end
        mListing->entry = readdir(mListing->stream);
    } while (mListing->entry != nullptr && (std::strcmp(Name(), ".") == 0 || std::strcmp(Name(), "..") == 0));
    return mListing->entry != nullptr;
}

const char* Platform::Folder::Name() const
{
    return mListing->entry->d_name;
}

bool Platform::Folder::IsFolder() const
{
    if (mListing->entry->d_type != DT_UNKNOWN) {
        return mListing->entry->d_type == DT_DIR;
    }
    struct stat status;
    return fstatat(dirfd(mListing->stream), Name(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
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

Platform::InputFile::InputFile(const std::string& path, Content)
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
