#ifndef ARBORIST_DIAGNOSIS_SCRATCH_SCRATCH_H
#define ARBORIST_DIAGNOSIS_SCRATCH_SCRATCH_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/process/interruption.h"

namespace diagnosis {

/// A private folder below $TMPDIR (or /tmp) for everything that a run writes: inputs stay as they are. It is removed
/// with the object, and on the signals of an Interruption.
class Scratch {
public:
    Scratch() = default;
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    /// Makes the folder; once made, it stays. Otherwise answers why not.
    std::optional<Failure> Make();
    /// The same in another folder than that for temporary files. Answers the system's reason when it can't be made.
    std::optional<std::string> MakeIn(const std::string& folder);
    bool IsMade() const { return !mPath.empty(); }
    /// Absolute and without links, empty before Make.
    const std::string& Path() const { return mPath; }
    std::string Path(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath;
    Interruption mInterruption;
};

} // namespace diagnosis

#endif
