#ifndef ARBORIST_DIAGNOSIS_CAPTURE_CAPTURED_FILES_H
#define ARBORIST_DIAGNOSIS_CAPTURE_CAPTURED_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/archive/zip_reader.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// Copies files of a device into a folder, within the limits of a bundle's zip. Names are relative and without "..".
/// Copies the targets of links.
class CapturedFiles {
public:
    /// Copies nothing from the folders `own`, which belong to the run and may be inside a captured folder.
    CapturedFiles(std::string folder, ZipLimits limits, std::vector<std::string> own = {})
        : mFolder(std::move(folder)), mLimits(limits), mOwn(std::move(own))
    {
    }

    /// Copies the file at `source`. Skips a missing file, and with a warning one that is no plain file
    /// or can't be read to its end.
    std::optional<Failure> AddFile(const std::string& source, const std::string& name);
    /// The same for a node file, whose length may not be known beforehand. Truncates a file as soon as it is longer
    /// than the library accepts.
    std::optional<Failure> AddNodeFile(const std::string& source, const std::string& name);
    /// Copies a folder with its content, or a plain file. Warns of folders in it that can't be read or lie more than 60
    /// folders deep, whose content is missing. Resolves links in it as if `root`, the real path of a folder
    /// above it, were the root directory; an empty `root` means this machine.
    std::optional<Failure> AddFolder(const std::string& source, const std::string& name, const std::string& root = "");
    /// Adds a file to the limits that was written to Path(name) in another way.
    std::optional<Failure> Count(const std::string& name);
    /// Replaces the content of a file that was copied.
    std::optional<Failure> Replace(const std::string& name, const std::string& content);
    /// The path of `name` in the folder; creates the folders above it.
    std::string Path(const std::string& name) const;

    std::uint64_t Files() const { return mFiles; }
    std::uint64_t Bytes() const { return mBytes; }
    const std::vector<Warning>& GetWarnings() const { return mWarnings; }
    /// The names of all copied files, in the order of copying.
    const std::vector<std::string>& GetNames() const { return mNames; }

private:
    std::optional<Failure> Take(const std::string& source, const std::string& name, std::uint64_t longest);
    void WarnOfUnreadable(const std::string& source);

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
