#include "diagnosis/scratch/folder_lock.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace diagnosis {

FolderLock::~FolderLock()
{
    if (mFolder >= 0) {
        close(mFolder);
    }
}

bool FolderLock::Take(const std::string& folder, const std::function<bool(int tries)>& tryAgain)
{
    mFolder = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int tries = 0; mFolder >= 0 && flock(mFolder, LOCK_EX | LOCK_NB) != 0; ++tries) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return true;
        }
        if (!tryAgain || !tryAgain(tries)) {
            return false;
        }
    }
    return true;
}

} // namespace diagnosis
