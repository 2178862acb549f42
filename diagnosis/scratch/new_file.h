#ifndef ARBORIST_DIAGNOSIS_SCRATCH_NEW_FILE_H
#define ARBORIST_DIAGNOSIS_SCRATCH_NEW_FILE_H

#include <optional>
#include <string>

#include "diagnosis/scratch/scratch.h"

namespace diagnosis {

/// A file that comes into being whole: it is written in a private folder beside its place, and put there at the end.
/// What is not put in place leaves no trace, also on signals, and an old file stays as it was.
class NewFile {
public:
    /// Makes the folder beside `path`. Otherwise answers why not ("is a folder").
    std::optional<std::string> Make(const std::string& path);
    /// Where to make the file.
    std::string TemporaryPath() const { return mFolder.Path("new"); }
    /// Gives the file its name, replacing an old one. Otherwise answers why not.
    std::optional<std::string> PutInPlace();

private:
    std::string mPath;
    Scratch mFolder;
};

/// Whether two paths lead to one file. A file that is read must not be replaced by what is made of it.
bool IsOneFile(const std::string& one, const std::string& other);

} // namespace diagnosis

#endif
