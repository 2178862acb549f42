#include "diagnosis/scratch/private_folder.h"

#include <cerrno>
#include <cstdlib>

namespace diagnosis {

std::error_code MakePrivateFolder(const std::string& folder, std::string& path)
{
    path = folder + "/arborist-XXXXXX";
    if (folder.empty() || mkdtemp(path.data()) == nullptr) {
        return {folder.empty() ? ENOENT : errno, std::generic_category()};
    }
    return {};
}

} // namespace diagnosis
