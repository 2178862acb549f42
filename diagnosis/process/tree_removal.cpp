#include "diagnosis/process/tree_removal.h"

#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diagnosis {

namespace {

bool RemoveEntry(int folder, const char* name);

// Reads the folder once; true if anything could be removed.
bool RemoveEntries(int folder)
{
    // Small, since the stack has one for each level.
    alignas(dirent64) char buffer[2048];
    bool isAnyRemoved = false;
    for (ssize_t length = getdents64(folder, buffer, sizeof(buffer)); length > 0;
         length = getdents64(folder, buffer, sizeof(buffer))) {
        for (ssize_t at = 0; at < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
            at += entry->d_reclen;
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
                isAnyRemoved = RemoveEntry(folder, entry->d_name) || isAnyRemoved;
            }
        }
    }
    return isAnyRemoved;
}

bool RemoveEntry(int folder, const char* name)
{
    if (unlinkat(folder, name, 0) == 0) {
        return true;
    }
    const int inner = openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (inner >= 0) {
        // Reading a folder that shrinks may skip entries: repeat until nothing can be removed.
        while (RemoveEntries(inner) && lseek(inner, 0, SEEK_SET) == 0) {
        }
        close(inner);
    }
    return unlinkat(folder, name, AT_REMOVEDIR) == 0;
}

} // namespace

void RemoveTree(const char* path)
{
    RemoveEntry(AT_FDCWD, path);
}

} // namespace diagnosis
