#ifndef ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_RESOURCE_H
#define ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_RESOURCE_H

/// Windows has no limits for the size of files.

struct rlimit {
    unsigned long long rlim_cur;
    unsigned long long rlim_max;
};

constexpr int RLIMIT_FSIZE = 1;

inline int getrlimit(int, rlimit*)
{
    return -1;
}

inline int setrlimit(int, const rlimit*)
{
    return -1;
}

#endif
