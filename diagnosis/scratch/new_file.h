#ifndef ARBORIST_DIAGNOSIS_SCRATCH_NEW_FILE_H
#define ARBORIST_DIAGNOSIS_SCRATCH_NEW_FILE_H

#include <optional>
#include <string>

#include "diagnosis/scratch/scratch.h"

namespace diagnosis {

/// Creates a file atomically: it is written in a private folder beside its target and moved there at the end. Without
/// that nothing remains, not even on signals, and an existing file is unchanged.
class NewFile {
public:
    /// Creates the folder beside `path`. Returns the reason if it can't ("is a folder").
    std::optional<std::string> Make(const std::string& path);
    /// Path at which to write the file.
    std::string TemporaryPath() const { return mFolder.Path("new"); }
    /// Moves the file to its target, replacing an existing file. Returns the reason if it can't.
    std::optional<std::string> PutInPlace();

private:
    std::string mPath;
    Scratch mFolder;
};

/// Writes a text into a file, atomically. Returns the path and the reason if it can't.
std::optional<std::string> WriteNewFile(const std::string& path, const std::string& text);

/// True if two paths name the same file. Guards against replacing an input by its own output.
bool IsOneFile(const std::string& one, const std::string& other);

} // namespace diagnosis

#endif
