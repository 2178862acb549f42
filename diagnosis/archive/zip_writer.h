#ifndef ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_WRITER_H
#define ARBORIST_DIAGNOSIS_ARCHIVE_ZIP_WRITER_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Makes the archive `target` of all files and folders below `folder`, in order of their names and without times:
/// the same content gives the same bytes. Links and what is neither file nor folder are left out. Otherwise answers
/// why not, naming the archive `shown`.
std::optional<Failure> PackZip(const std::string& folder, const std::string& target, const std::string& shown);

} // namespace diagnosis

#endif
