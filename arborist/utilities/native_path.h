#ifndef ARBORIST_UTILITIES_NATIVE_PATH_H
#define ARBORIST_UTILITIES_NATIVE_PATH_H

#include <filesystem>
#include <string>

/// The text of a path as the standard library takes it: UTF-8 on Windows, where the library would read the letters of
/// the C locale; elsewhere the bytes as they are. Paths that the library returns are UTF-8 on Windows anyway.
#ifdef _WIN32
/// What is no UTF-8 becomes the replacement character, where the standard library would throw.
std::filesystem::path NativePath(const std::string& text);
#else
inline const std::string& NativePath(const std::string& text)
{
    return text;
}
#endif

#endif
