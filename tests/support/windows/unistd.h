#ifndef ARBORIST_TESTS_SUPPORT_WINDOWS_UNISTD_H
#define ARBORIST_TESTS_SUPPORT_WINDOWS_UNISTD_H

/// The compiler's own header, and a change of users, which Windows doesn't know: it fails.

#pragma GCC system_header
#include_next <unistd.h>

using uid_t = unsigned int;

inline int seteuid(uid_t)
{
    return -1;
}

#endif
