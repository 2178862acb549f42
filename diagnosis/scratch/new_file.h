#ifndef ARBORIST_DIAGNOSIS_SCRATCH_NEW_FILE_H
#define ARBORIST_DIAGNOSIS_SCRATCH_NEW_FILE_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/scratch/scratch.h"

namespace diagnosis {

/// Folders that are created for a file, and removed again unless they are kept.
class NewFolders {
public:
    NewFolders() = default;
    /// Removes the folders, but not one that is no longer empty.
    ~NewFolders();
    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;

    /// Creates a folder and those above it, as far as they are missing and can be created.
    void Make(const std::filesystem::path& folder);
    void Keep() { mMade.clear(); }

private:
    /// Each behind the one that it lies in.
    std::vector<std::filesystem::path> mMade;
};

/// Creates a file atomically: it is written in a private folder beside its target and moved there at the end. Without
/// that nothing remains, not even on signals, and an existing file is unchanged.
class NewFile {
public:
    /// Creates the folder beside `path`. Returns the reason if it can't ("is a folder").
    std::optional<std::string> Make(const std::string& path);
    /// The same, and before it the missing folders above `path`, which go again if the file is not put in place.
    std::optional<std::string> MakeWithFolders(const std::string& path);
    /// Path at which to write the file.
    std::string TemporaryPath() const { return mFolder.Path("new"); }
    /// Moves the file to its target, replacing an existing file. Returns the reason if it can't.
    std::optional<std::string> PutInPlace();
    /// The same without replacing a file that another process has put there meanwhile.
    std::optional<std::string> PutInFreePlace();

private:
    std::string mPath;
    // In this order, so that the folder beside the file is removed before those that it lies in.
    NewFolders mFoldersAbove;
    Scratch mFolder;
};

/// Writes a text into a file, atomically. Returns the path and the reason if it can't.
std::optional<std::string> WriteNewFile(const std::string& path, const std::string& text);

/// True if two paths name the same file. Guards against replacing an input by its own output.
bool IsOneFile(const std::string& one, const std::string& other);

} // namespace diagnosis

#endif
