#ifndef ARBORIST_UTILITIES_PLATFORM_H
#define ARBORIST_UTILITIES_PLATFORM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>

/// Direct calls of the operating system: platform.cpp for POSIX, platform_windows.cpp for Windows. No file that is opened
/// here is inherited by a program that the host starts.
///
/// Paths are UTF-8 on Windows, which knows them as UTF-16; elsewhere they are the bytes that the system has.
namespace Platform {

/// Sets the name of the calling thread; the system may keep only its first characters.
void NameThread(const std::string& name);

/// strtof and strtod in the "C" locale: with a decimal point, whatever locale the host has set.
float StrToFloat(const char* text, char** end);
double StrToDouble(const char* text, char** end);

/// The local time of a moment, in seconds since the epoch; false if the system can't say.
bool LocalTime(std::int64_t seconds, std::tm& local);
/// The moment of a local time, as mktime: -1 if the system can't say. With tm_isdst 0 the clock is not that of summer.
std::int64_t MomentOf(std::tm local);

/// remove, for a file or an empty folder; false, with errno, on failure.
bool Remove(const std::string& path);

/// fopen; null on failure. Without a "b" in the mode, line ends on Windows are those of Windows.
std::FILE* OpenFile(const std::string& path, const char* mode);
std::FILE* OpenForReading(const std::string& path);

/// Copies the content and the permissions of a plain file, and replaces an existing target; false on failure, also where
/// both are the same file. If the detection is to end, it ends here and leaves no target; see StopPoint::Pass.
bool CopyContent(const std::string& source, const std::string& target);

/// The entries of a folder, in the order of the system. Throws std::bad_alloc if memory runs out, where the
/// standard library would end the process.
class Folder {
public:
    /// Follows a link at the end of the path.
    explicit Folder(const std::string& path);
    ~Folder();
    Folder(Folder&& other) noexcept;
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// If not, errno has the reason.
    bool IsOpen() const { return mListing != nullptr; }
    /// Opens the current entry, which must be a folder.
    Folder OpenEntry() const;
    /// Moves to the next entry other than "." and "..". False at the end, with errno 0, and on an error, with its
    /// number.
    bool Next();
    /// The name of the current entry, until the next call.
    const char* Name() const;
    /// True if the current entry is a folder, and not a link to one.
    bool IsFolder() const;

private:
    struct Listing;
    explicit Folder(std::unique_ptr<Listing> listing);

    std::unique_ptr<Listing> mListing; // null if the folder could not be opened
};

/// Identity and state of the file at a path: two equal values mean the same file, not changed in between.
class FileIdentity {
public:
    FileIdentity() = default;
    explicit FileIdentity(const std::string& path);

    /// False if there is no such file.
    bool IsSet() const { return mIsSet; }
    bool operator==(const FileIdentity& other) const { return mIsSet == other.mIsSet && mMarks == other.mMarks; }

private:
    bool mIsSet = false;
    std::array<std::int64_t, 7> mMarks{}; // device, number, size, and the times of its last changes
};

/// Reads a file from start to end and never blocks.
///
/// Opens only plain files, including those of procfs and sysfs, and the memory devices (null, zero, full, random): a
/// pipe could block, and opening another device can have effects.
class InputFile {
public:
    /// TEXT turns the line ends of Windows into those of C, on Windows alone; the number of bytes that are read is then
    /// less than Size().
    enum class Content { BYTES, TEXT };

    explicit InputFile(const std::string& path, Content content = Content::BYTES);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool IsOpen() const { return mDescriptor >= 0; }
    /// The size that the file system reports: 0 for procfs and devices, too much for sysfs.
    std::uint64_t Size() const { return mSize; }
    /// Reads up to `length` bytes and returns their number: 0 at the end of the file, negative on an error.
    std::ptrdiff_t Read(char* buffer, std::size_t length);

private:
    int mDescriptor = -1;
    std::uint64_t mSize = 0;
};

} // namespace Platform

#endif
