#ifndef ARBORIST_TESTS_SUPPORT_TEMP_DIR_H
#define ARBORIST_TESTS_SUPPORT_TEMP_DIR_H

#include <filesystem>
#include <string>

/// A new folder that is the current directory as long as the object exists and is removed with its content at the end.
/// One at a time.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Absolute path of the folder, canonical, without a trailing separator.
    const std::string& Path() const { return mPath; }
    /// Absolute path of `name` in the folder.
    std::string Path(const std::string& name) const { return mPath + "/" + name; }

    /// Writes a file, creating the folders above it; returns its absolute path.
    std::string Write(const std::string& name, const std::string& content) const;
    std::string Read(const std::string& name) const;
    /// Creates a folder and those above it; returns its absolute path.
    std::string MakeDir(const std::string& name) const;
    bool Has(const std::string& name) const;

private:
    std::string mPath;
    std::filesystem::path mBefore;
};

#endif
