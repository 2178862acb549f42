#ifndef ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_UN_H
#define ARBORIST_TESTS_SUPPORT_WINDOWS_SYS_UN_H

/// The address of a socket that has a name in the file system.
struct sockaddr_un {
    unsigned short sun_family;
    char sun_path[108];
};

#endif
