#ifndef ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_READER_H
#define ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_READER_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Limits on the content of an archive: archives come from strangers, and a small one can unpack to petabytes.
struct ZipLimits {
    std::uint64_t entries = 65536;
    /// Unpacked size of all entries together.
    std::uint64_t bytes = std::uint64_t{4} << 30U;
};

/// True if the file at `path` begins like an archive.
bool IsZip(const std::string& path);

/// Unpacks the archive at `path` into the existing, empty folder `target`; messages call the archive `shown`. Returns
/// the failure, if any; files unpacked before it stay.
///
/// Refuses names that lead out of the target, repeated names, damaged or encrypted entries, folders more than 64 deep,
/// and archives over the limits. Skips symbolic links with a warning for each. Asks `isToEnd` again and again, unless it is
/// null; when it says so, the unpacking ends with the failure TIMEOUT.
std::optional<Failure> UnpackZip(const std::string& path, const std::string& shown, const std::string& target,
    std::vector<Warning>& warnings, const ZipLimits& limits = {}, const std::function<bool()>& isToEnd = nullptr);

} // namespace diagnosis

#endif
