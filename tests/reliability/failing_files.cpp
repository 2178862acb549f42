#include "tests/reliability/failing_files.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using FailingFiles::Call;

Call watched = Call::OPEN;
int failure = EIO;
bool areTypesHidden = false;

bool Fails(Call call)
{
    if (call != watched || !CallCounter::Fails()) {
        return false;
    }
    errno = failure;
    return true;
}

template <typename Function>
Function* Next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

mode_t ModeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

// A stream whose file can be neither read nor written.
FILE* DeadStream(const char* mode)
{
    cookie_io_functions_t functions{};
    functions.read = [](void*, char*, size_t) -> ssize_t {
        errno = failure;
        return -1;
    };
    functions.write = [](void*, const char*, size_t) -> ssize_t {
        errno = failure;
        return 0; // an error, for a stream of this kind
    };
    functions.seek = [](void*, off64_t* offset, int) {
        *offset = 1000;
        return 0;
    };
    return fopencookie(nullptr, mode, functions);
}

} // namespace

void FailingFiles::Watch(Call call, int error)
{
    watched = call;
    failure = error;
}

FailingFiles::HiddenTypes::HiddenTypes()
{
    areTypesHidden = true;
}

FailingFiles::HiddenTypes::~HiddenTypes()
{
    areTypesHidden = false;
}

// Calls the function of the C library unless the call is to fail.
#define STAND_IN(kind, failed, Result, name, parameters, arguments) \
    extern "C" Result name parameters                               \
    {                                                               \
        static auto* const next = Next<Result parameters>(#name);   \
        return Fails(kind) ? failed : next arguments;               \
    }
#define STAND_IN_FOR_OPEN(name)                                                    \
    extern "C" int name(const char* path, int flags, ...)                          \
    {                                                                              \
        static auto* const next = Next<int(const char*, int, ...)>(#name);         \
        va_list arguments;                                                         \
        va_start(arguments, flags);                                                \
        const mode_t mode = ModeOf(flags, arguments);                              \
        va_end(arguments);                                                         \
        return Fails(Call::OPEN) ? -1 : next(path, flags, mode);                   \
    }
#define STAND_IN_FOR_OPENAT(name)                                                  \
    extern "C" int name(int folder, const char* path, int flags, ...)              \
    {                                                                              \
        static auto* const next = Next<int(int, const char*, int, ...)>(#name);    \
        va_list arguments;                                                         \
        va_start(arguments, flags);                                                \
        const mode_t mode = ModeOf(flags, arguments);                              \
        va_end(arguments);                                                         \
        return Fails(Call::OPEN) ? -1 : next(folder, path, flags, mode);           \
    }
#define STAND_IN_FOR_FOPEN(name)                                                   \
    extern "C" FILE* name(const char* path, const char* mode)                      \
    {                                                                              \
        static auto* const next = Next<FILE*(const char*, const char*)>(#name);    \
        return Fails(Call::OPEN) ? nullptr : Fails(Call::DEAD_STREAM) ? DeadStream(mode) : next(path, mode); \
    }

STAND_IN_FOR_OPEN(open)
STAND_IN_FOR_OPEN(open64)
STAND_IN_FOR_OPENAT(openat)
STAND_IN_FOR_OPENAT(openat64)
STAND_IN_FOR_FOPEN(fopen)
STAND_IN_FOR_FOPEN(fopen64)
STAND_IN(Call::OPEN, nullptr, DIR*, opendir, (const char* path), (path))
STAND_IN(Call::READ, -1, ssize_t, read, (int file, void* bytes, size_t length), (file, bytes, length))
STAND_IN(Call::READ, -1, ssize_t, pread, (int file, void* bytes, size_t length, off_t from), (file, bytes, length, from))
STAND_IN(Call::READ, -1, ssize_t, pread64, (int file, void* bytes, size_t length, off64_t from),
    (file, bytes, length, from))
STAND_IN(Call::WRITE, -1, ssize_t, pwrite64, (int file, const void* bytes, size_t length, off64_t from),
    (file, bytes, length, from))
STAND_IN(Call::WRITE, 0, size_t, fwrite, (const void* bytes, size_t size, size_t count, FILE* file),
    (bytes, size, count, file))
STAND_IN(Call::RENAME, -1, int, rename, (const char* from, const char* to), (from, to))
STAND_IN(Call::MAKE_FOLDER, -1, int, mkdir, (const char* path, mode_t mode), (path, mode))
STAND_IN(Call::REMOVE, -1, int, unlink, (const char* path), (path))
STAND_IN(Call::REMOVE, -1, int, rmdir, (const char* path), (path))
STAND_IN(Call::REMOVE, -1, int, remove, (const char* path), (path))
STAND_IN(Call::STATUS, -1, int, stat, (const char* path, struct stat* status), (path, status))
STAND_IN(Call::STATUS, -1, int, lstat, (const char* path, struct stat* status), (path, status))
STAND_IN(Call::STATUS, -1, int, fstat, (int file, struct stat* status), (file, status))
STAND_IN(Call::STATUS, -1, int, fstatat, (int folder, const char* path, struct stat* status, int flags),
    (folder, path, status, flags))
STAND_IN(Call::CHANGE_MODE, -1, int, fchmod, (int file, mode_t mode), (file, mode))
STAND_IN(Call::CHANGE_MODE, -1, int, fchmodat, (int folder, const char* path, mode_t mode, int flags),
    (folder, path, mode, flags))
STAND_IN(Call::SEEK, -1, int, fseek, (FILE* file, long offset, int from), (file, offset, from))
STAND_IN(Call::SEEK, -1, int, fseeko, (FILE* file, off_t offset, int from), (file, offset, from))
STAND_IN(Call::LIST, nullptr, DIR*, fdopendir, (int folder), (folder))
STAND_IN(Call::LOOK, -1, int, access, (const char* path, int mode), (path, mode))
// Waiting for the disk would take most of the time, and is of no interest here.
extern "C" int fsync(int) { return 0; }
extern "C" int fdatasync(int) { return 0; }

extern "C" ssize_t write(int file, const void* bytes, size_t length)
{
    static auto* const next = Next<ssize_t(int, const void*, size_t)>("write");
    return Fails(Call::WRITE) ? -1 : next(file, bytes, Fails(Call::HALF_A_WRITE) ? (length + 1) / 2 : length);
}

extern "C" ssize_t copy_file_range(int from, off64_t* fromAt, int to, off64_t* toAt, size_t length, unsigned int flags)
{
    static auto* const next = Next<ssize_t(int, off64_t*, int, off64_t*, size_t, unsigned int)>("copy_file_range");
    return Fails(Call::WRITE) || Fails(Call::COPY) ? -1 : next(from, fromAt, to, toAt, length, flags);
}

// Closes the file even so, as the system does.
extern "C" int close(int file)
{
    static auto* const next = Next<int(int)>("close");
    const int result = next(file);
    return Fails(Call::CLOSE) ? -1 : result;
}

extern "C" dirent* readdir(DIR* folder)
{
    static auto* const next = Next<dirent*(DIR*)>("readdir");
    dirent* const entry = Fails(Call::NEXT_ENTRY) ? nullptr : next(folder);
    if (entry != nullptr && areTypesHidden) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}

// The C library's own takes six words, too, however many there are.
extern "C" long syscall(long number, ...)
{
    static auto* const next = Next<long(long, ...)>("syscall");
    va_list arguments;
    va_start(arguments, number);
    long words[6];
    std::generate(std::begin(words), std::end(words), [&arguments] { return va_arg(arguments, long); });
    va_end(arguments);
    constexpr long OPENAT2 = 437;
    return number == OPENAT2 && Fails(Call::RESOLVE)
        ? -1 : next(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}
