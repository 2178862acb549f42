#ifndef ARBORIST_DIAGNOSIS_SCRATCH_SCRATCH_H
#define ARBORIST_DIAGNOSIS_SCRATCH_SCRATCH_H

#include <optional>
#include <string>

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
    /// The same inside `folder` instead of the one for temporary files. Returns the system's reason if it fails.
    std::optional<std::string> MakeIn(const std::string& folder);
    bool IsMade() const { return !mPath.empty(); }
    /// Absolute path without links; empty before Make.
    const std::string& Path() const { return mPath; }
    std::string Path(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath;
    Interruption mInterruption;
};

} // namespace diagnosis

#endif
