#include "diagnosis/scratch/folder_lock.h"

#include <cstdint>
#include <filesystem>

#include <windows.h>

#include "diagnosis/digest/digest.h"

namespace diagnosis {

namespace {

namespace fs = std::filesystem;

// Handles of the system fit into 32 bits.
HANDLE HandleOf(int number)
{
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(number));
}

int NumberOf(HANDLE handle)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

} // namespace

FolderLock::~FolderLock()
{
    if (mFolder >= 0) {
        CloseHandle(HandleOf(mFolder));
    }
}

// Whoever makes an object of the folder's name has the lock; the object goes with its last handle.
bool FolderLock::Take(const std::string& folder, const std::function<bool(int tries)>& tryAgain)
{
    std::error_code error;
    const std::string place = fs::weakly_canonical(folder, error).generic_string();
    const std::string name = "Local\\arborist-" + Sha256Hex(place);
    for (int tries = 0;; ++tries) {
        const HANDLE object = CreateMutexA(nullptr, FALSE, name.c_str());
        const bool isOthers = GetLastError() == ERROR_ALREADY_EXISTS;
        if (object != nullptr && !isOthers) {
            mFolder = NumberOf(object);
        }
        if (object == nullptr || !isOthers) {
            return true;
        }
        CloseHandle(object);
        if (!tryAgain || !tryAgain(tries)) {
            return false;
        }
    }
}

} // namespace diagnosis
