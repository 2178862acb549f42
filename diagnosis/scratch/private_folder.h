#ifndef ARBORIST_DIAGNOSIS_SCRATCH_PRIVATE_FOLDER_H
#define ARBORIST_DIAGNOSIS_SCRATCH_PRIVATE_FOLDER_H

#include <string>
#include <system_error>

namespace diagnosis {

/// Makes a folder "arborist-" with six letters inside `folder`, with rights for this user alone, and sets `path` to it.
/// On Windows it has the rights of `folder`, which for temporary files is the user's own.
std::error_code MakePrivateFolder(const std::string& folder, std::string& path);

} // namespace diagnosis

#endif
