#ifndef ARBORIST_TESTS_SUPPORT_FULL_DISK_H
#define ARBORIST_TESTS_SUPPORT_FULL_DISK_H

#include <csignal>

#include <sys/resource.h>

/// While it lives, no file of this process grows beyond `bytes`: to the process the disk is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : mHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit limit{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        std::signal(SIGXFSZ, mHandler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*mHandler)(int);
    rlimit mBefore{};
};

#endif
