#ifndef ARBORIST_DIAGNOSIS_SCRATCH_FOLDER_LOCK_H
#define ARBORIST_DIAGNOSIS_SCRATCH_FOLDER_LOCK_H

#include <functional>
#include <string>

namespace diagnosis {

/// Makes processes take turns at making a file in a folder, if each takes the folder's lock before it looks for the file.
/// Nothing else in the folder is hindered. The lock is given back at the end of the object or of the process.
class FolderLock {
public:
    FolderLock() = default;
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// While another has the lock, asks `tryAgain` with the number of tries so far, and fails if that says no or is null.
    /// Succeeds where folders can't be locked, as on some network drives: put a file in place so that it replaces none.
    bool Take(const std::string& folder, const std::function<bool(int tries)>& tryAgain);

private:
    int mFolder = -1;
};

} // namespace diagnosis

#endif
