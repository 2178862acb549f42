#ifndef ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_WRITER_H
#define ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_WRITER_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Packs all files and folders below `folder` into the archive `target`, sorted by name and without times, so that
/// equal content gives equal bytes. Leaves out links and everything that is neither file nor folder. Returns the
/// failure, if any; its message calls the archive `shown`.
std::optional<Failure> PackZip(const std::string& folder, const std::string& target, const std::string& shown);

} // namespace diagnosis

#endif
