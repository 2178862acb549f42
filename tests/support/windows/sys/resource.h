#ifndef ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_RESOURCE_H
#define ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_RESOURCE_H

/// Windows has no limits for the size of files.

using rlim_t = unsigned long long;

struct rlimit {
    rlim_t rlim_cur;
    rlim_t rlim_max;
};

constexpr int RLIMIT_FSIZE = 1;
constexpr int SIGXFSZ = 25;

inline int getrlimit(int, rlimit*)
{
    return -1;
}

inline int setrlimit(int, const rlimit*)
{
    return -1;
}

#endif
