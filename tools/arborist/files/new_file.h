#ifndef ARBORIST_TOOLS_FILES_NEW_FILE_H
#define ARBORIST_TOOLS_FILES_NEW_FILE_H

#include <optional>
#include <string>

namespace command {

/// A file that comes into being whole: it is written beside its place under another name, and put there at the end.
/// What is not put in place leaves no trace, and an old file stays as it was.
class NewFile {
public:
    NewFile() = default;
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Makes the empty file beside `path`. Otherwise answers why not ("is a folder").
    std::optional<std::string> Make(const std::string& path);
    /// Where to write; empty before Make and after PutInPlace.
    const std::string& TemporaryPath() const { return mTemporary; }
    /// Gives the file its name, replacing an old one. Otherwise answers why not.
    std::optional<std::string> PutInPlace();

private:
    std::string mPath;
    std::string mTemporary;
};

} // namespace command

#endif
