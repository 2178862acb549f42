#ifndef ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_SOCKET_H
#define ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_SOCKET_H

/// Windows has no sockets with a name in the file system that its C library knows.

constexpr int AF_UNIX = 1;
constexpr int SOCK_STREAM = 1;

struct sockaddr {};

inline int socket(int, int, int)
{
    return -1;
}

inline int bind(int, const sockaddr*, unsigned long long)
{
    return -1;
}

#endif
