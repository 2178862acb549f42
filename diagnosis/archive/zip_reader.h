#ifndef ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_READER_H
#define ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_READER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// What an archive may hold at most: archives come from strangers, and a small one can tell of petabytes.
struct ZipLimits {
    std::uint64_t entries = 65536;
    /// Of all entries together, unpacked.
    std::uint64_t bytes = std::uint64_t{4} << 30U;
};

/// Whether the file at `path` begins as an archive does.
bool IsZip(const std::string& path);

/// Unpacks the archive at `path` into the folder `target`, which is there and empty; `shown` names the archive in
/// messages. Otherwise answers why not, and what was unpacked until then stays.
///
/// Refused are names that lead out of the target, names that stand twice, damaged or encrypted entries, folders more
/// than 64 deep, and what is over the limits. Symbolic links are not made; each is a warning.
std::optional<Failure> UnpackZip(const std::string& path, const std::string& shown, const std::string& target,
    std::vector<Warning>& warnings, const ZipLimits& limits = {});

} // namespace diagnosis

#endif
