#ifndef ARBORIST_UTILITIES_PLATFORM_H
#define ARBORIST_UTILITIES_PLATFORM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/// What the operating system is asked for directly; all of it below FileUtil and ZipUtil.
namespace Platform {

/// Names the calling thread; the system may keep the first characters only.
void NameThread(const std::string& name);

/// strtof and strtod as they are in the "C" locale: with a point, whatever locale the host has set.
float StrToFloat(const char* text, char** end);
double StrToDouble(const char* text, char** end);

/// Which file stands at a path, and in which state: two that are equal are the same file, unchanged in between.
class FileIdentity {
public:
    FileIdentity() = default;
    explicit FileIdentity(const std::string& path);

    /// False when there is no such file.
    bool IsSet() const { return mIsSet; }
    bool operator==(const FileIdentity& other) const { return mIsSet == other.mIsSet && mMarks == other.mMarks; }

private:
    bool mIsSet = false;
    std::array<std::int64_t, 7> mMarks{}; // device, number, size, and the times of its last changes
};

/// A file that is read from start to end without ever waiting.
///
/// Only plain files (those of procfs and sysfs among them) and the memory devices (null, zero, full, random) are
/// opened: a pipe could block, and with other devices the mere opening has effects.
class InputFile {
public:
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool IsOpen() const { return mDescriptor >= 0; }
    /// As the file system tells it; 0 where it doesn't know (procfs, devices), and too much for sysfs.
    std::uint64_t Size() const { return mSize; }
    /// Reads up to `length` bytes: the number read, 0 at the end, negative on an error.
    std::ptrdiff_t Read(char* buffer, std::size_t length);

private:
    int mDescriptor = -1;
    std::uint64_t mSize = 0;
};

} // namespace Platform

#endif
