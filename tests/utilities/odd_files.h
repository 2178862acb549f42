#ifndef ARBORIST_TESTS_UTILITIES_ODD_FILES_H
#define ARBORIST_TESTS_UTILITIES_ODD_FILES_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

/// Each creates a file in the current directory and returns its name.

/// A sparse file of zeros.
inline std::string SparseFile(const std::string& name, std::uintmax_t size)
{
    std::ofstream(name).close();
    std::filesystem::resize_file(name, size);
    return name;
}

inline std::string Pipe(const std::string& name)
{
    EXPECT_EQ(mkfifo(name.c_str(), 0600), 0);
    return name;
}

inline std::string Socket(const std::string& name)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int made = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    close(made);
    return name;
}

#endif
