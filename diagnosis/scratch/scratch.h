#ifndef ARBORIST_DIAGNOSIS_SCRATCH_SCRATCH_H
#define ARBORIST_DIAGNOSIS_SCRATCH_SCRATCH_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/process/interruption.h"

namespace diagnosis {

/// A private folder below $TMPDIR (or /tmp) for everything that a run writes, so that inputs are not changed. Removed
/// with the object, and on the signals of an Interruption.
class Scratch {
public:
    Scratch() = default;
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    /// Creates the folder; does nothing if it is created already. Returns the failure, if any.
    std::optional<Failure> Make();
    /// The same, but takes the folder that a ReusedScratch keeps, if there is one: it has the folders that that names, and
    /// nothing else. Its name is a new one all the same, so that nothing that is remembered by its path fits.
    std::optional<Failure> MakeOrReuse();
    /// The same inside `folder` instead of the one for temporary files. Returns the system's reason if it fails.
    std::optional<std::string> MakeIn(const std::string& folder);
    bool IsMade() const { return !mPath.empty(); }
    /// Absolute path without links; empty before Make.
    const std::string& Path() const { return mPath; }
    std::string Path(const std::string& name) const { return mPath + "/" + name; }

private:
    bool TakeKept();

    std::string mPath;
    bool mIsReusable = false;
    Interruption mInterruption;
};

/// As long as it exists, the folder of a Scratch that is given back is emptied, down to some folders in it, and kept for
/// the next one: where a disk is busy, removing a folder waits for it. One at a time.
class ReusedScratch {
public:
    /// `folders` are paths below the scratch folder; a folder follows the one that contains it.
    explicit ReusedScratch(std::vector<std::string> folders);
    /// Removes the folder that is kept.
    ~ReusedScratch();
    ReusedScratch(const ReusedScratch&) = delete;
    ReusedScratch& operator=(const ReusedScratch&) = delete;

private:
    friend class Scratch;
    bool Keep(const std::string& path);

    std::vector<std::string> mFolders;
    std::string mKept;
    Interruption mInterruption;
};

} // namespace diagnosis

#endif
