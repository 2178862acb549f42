#ifndef ARBORIST_TESTS_SUPPORT_WINDOWS_POSIX_H
#define ARBORIST_TESTS_SUPPORT_WINDOWS_POSIX_H

/// What tests use of POSIX and Windows lacks, for builds for Windows, which include it in front of every test. What can be
/// done there is done; a pipe, a socket or a limit can't be made: each call for one fails, and scripts/test-windows.sh
/// leaves out the tests that need it.

#include <cstdlib>
#include <ctime>
#include <string>

#include <direct.h>
#include <io.h>
#include <sys/stat.h>
#include <unistd.h>

inline int setenv(const char* name, const char* value, int overwrite)
{
    return overwrite == 0 && std::getenv(name) != nullptr ? 0 : _putenv_s(name, value);
}

inline int unsetenv(const char* name)
{
    return _putenv_s(name, "");
}

// Replaces the six letters "X" at the end of `pattern` until nothing has that name.
inline char* mkdtemp(char* pattern)
{
    const std::string start(pattern);
    for (int attempt = 0; attempt < 100; ++attempt) {
        start.copy(pattern, start.size());
        if (_mktemp(pattern) != nullptr && _mkdir(pattern) == 0) {
            return pattern;
        }
    }
    return nullptr;
}

inline struct tm* localtime_r(const std::time_t* seconds, struct tm* local)
{
    return localtime_s(local, seconds) == 0 ? local : nullptr;
}

// The kind of file that archivers of Unix note for a link.
constexpr unsigned int S_IFLNK = 0120000;

inline int mkdir(const char* path, unsigned int)
{
    return _mkdir(path);
}

inline int mkfifo(const char*, unsigned int)
{
    return -1;
}

inline unsigned int geteuid()
{
    return 1;
}

#endif
