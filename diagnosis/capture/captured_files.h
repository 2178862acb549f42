#ifndef ARBORIST_DIAGNOSIS_CAPTURE_CAPTURED_FILES_H
#define ARBORIST_DIAGNOSIS_CAPTURE_CAPTURED_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/archive/zip_reader.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// Takes files of a device into a folder, within the limits that a bundle's zip must keep. Names are relative and
/// without "..". Takes what links lead to.
class CapturedFiles {
public:
    /// Nothing is taken from the folders `own`, which are the run's: they may lie in a folder that is captured.
    CapturedFiles(std::string folder, ZipLimits limits, std::vector<std::string> own = {})
        : mFolder(std::move(folder)), mLimits(limits), mOwn(std::move(own))
    {
    }

    /// Takes the file at `source`; one that is missing stays missing, and one that is no plain file is a warning.
    std::optional<Failure> AddFile(const std::string& source, const std::string& name);
    /// The same for a node file, whose length need not be known before and is bounded: what the library refuses for
    /// its length is cut where that is certain.
    std::optional<Failure> AddNodeFile(const std::string& source, const std::string& name);
    /// Takes a folder with all that is in it; a plain file is taken as one. Links in it are resolved as if `root`, the
    /// real path of a folder above it, were the root directory; on this machine for the empty text.
    std::optional<Failure> AddFolder(const std::string& source, const std::string& name, const std::string& root = "");
    /// Counts a file that was written to Path(name) by other means.
    std::optional<Failure> Count(const std::string& name);
    /// Where `name` stands; the folders above it are made.
    std::string Path(const std::string& name) const;

    std::uint64_t Files() const { return mFiles; }
    std::uint64_t Bytes() const { return mBytes; }
    const std::vector<Warning>& GetWarnings() const { return mWarnings; }
    /// All files that were taken, in that order.
    const std::vector<std::string>& GetNames() const { return mNames; }

private:
    std::optional<Failure> Take(const std::string& source, const std::string& name, std::uint64_t longest);

    std::string mFolder;
    ZipLimits mLimits;
    std::vector<std::string> mOwn;
    std::uint64_t mFiles = 0;
    std::vector<std::string> mNames;
    std::uint64_t mBytes = 0;
    std::vector<Warning> mWarnings;
};

} // namespace diagnosis

#endif
