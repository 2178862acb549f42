#ifndef ARBORIST_DIAGNOSIS_ARCHIVE_ENTRY_FILE_H
#define ARBORIST_DIAGNOSIS_ARCHIVE_ENTRY_FILE_H

#include <cstddef>
#include <filesystem>
#include <string>

namespace diagnosis {

/// False for the name of an entry that means something else to this system than a file below the target: on Windows a
/// drive, a part of a file ("a:b") or a device ("NUL").
bool IsNameOfSystem(const std::string& name);

/// A new file for an entry of an archive; for this user alone where files have modes.
class EntryFile {
public:
    /// Never opens a file or follows a link that is there.
    explicit EntryFile(const std::filesystem::path& path);
    ~EntryFile();
    EntryFile(const EntryFile&) = delete;
    EntryFile& operator=(const EntryFile&) = delete;

    /// If not, errno has the reason.
    bool IsOpen() const { return mDescriptor >= 0; }
    /// Writes all bytes; false, with errno, if it can't.
    bool Write(const char* bytes, std::size_t length);

private:
    int mDescriptor;
};

} // namespace diagnosis

#endif
