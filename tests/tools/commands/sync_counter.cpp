// Preloaded by tests: appends a letter to the file that SYNC_COUNT_FILE names for each call that may wait for the disk:
// "s" for syncing a file, "d" for removing a folder.
#include <cstdlib>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

void Note(char letter)
{
    const char* const name = std::getenv("SYNC_COUNT_FILE");
    const int file = name == nullptr ? -1 : open(name, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file >= 0) {
        [[maybe_unused]] const auto written = write(file, &letter, 1);
        close(file);
    }
}

} // namespace

extern "C" int fsync(int file)
{
    Note('s');
    return static_cast<int>(syscall(SYS_fsync, file));
}

extern "C" int fdatasync(int file)
{
    Note('s');
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

extern "C" int rmdir(const char* path)
{
    Note('d');
    return static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

extern "C" int unlinkat(int folder, const char* path, int flags)
{
    if ((flags & AT_REMOVEDIR) != 0) {
        Note('d');
    }
    return static_cast<int>(syscall(SYS_unlinkat, folder, path, flags));
}
