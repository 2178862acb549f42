// Preloaded by tests: calls of the system fail. FAILING_CALL names one, "fork 2" the second of each process (and of those
// that made it), FAILING_READ the end of the path of files that can be opened and not read, and FAILING_FOLDER that of
// folders that can't be opened.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <dirent.h>
#include <dlfcn.h>
#include <sched.h>
#include <stdio.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

template <typename Function>
Function* Next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Counts the calls of this name; true for the one that is to fail, whose error is set.
bool IsToFail(const char* name, int error)
{
    static int calls = 0;
    const char* const wanted = std::getenv("FAILING_CALL");
    const std::size_t length = std::strlen(name);
    if (wanted == nullptr || std::strncmp(wanted, name, length) != 0 || wanted[length] != ' '
        || ++calls != std::atoi(wanted + length)) {
        return false;
    }
    errno = error;
    return true;
}

// True if the path of an open file ends as the environment says.
bool EndsAs(const char* variable, int file)
{
    const char* const end = std::getenv(variable);
    if (end == nullptr) {
        return false;
    }
    char path[4096];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, sizeof path);
    return length > 0 && std::string_view(path, static_cast<std::size_t>(length)).ends_with(end);
}

} // namespace

extern "C" pid_t fork()
{
    return IsToFail("fork", EAGAIN) ? -1 : Next<decltype(fork)>("fork")();
}

extern "C" int socketpair(int domain, int type, int protocol, int sockets[2])
{
    return IsToFail("socketpair", EMFILE) ? -1 : Next<decltype(socketpair)>("socketpair")(domain, type, protocol, sockets);
}

extern "C" int pipe2(int pipes[2], int flags)
{
    return IsToFail("pipe2", EMFILE) ? -1 : Next<decltype(pipe2)>("pipe2")(pipes, flags);
}

extern "C" FILE* tmpfile()
{
    return IsToFail("tmpfile", EMFILE) ? nullptr : Next<decltype(tmpfile)>("tmpfile")();
}

extern "C" int sched_getaffinity(pid_t process, std::size_t size, cpu_set_t* processors) noexcept
{
    return IsToFail("sched_getaffinity", EPERM)
        ? -1 : Next<decltype(sched_getaffinity)>("sched_getaffinity")(process, size, processors);
}

extern "C" char* mkdtemp(char* path)
{
    return IsToFail("mkdtemp", ENOSPC) ? nullptr : Next<decltype(mkdtemp)>("mkdtemp")(path);
}

// As the standard library opens folders.
extern "C" DIR* fdopendir(int folder)
{
    if (EndsAs("FAILING_FOLDER", folder)) {
        errno = EACCES;
        return nullptr;
    }
    return Next<decltype(fdopendir)>("fdopendir")(folder);
}

// Memory that processes share.
extern "C" void* mmap(void* address, std::size_t length, int protection, int flags, int file, off_t offset) noexcept
{
    const bool isShared = (flags & MAP_SHARED) != 0 && (flags & MAP_ANONYMOUS) != 0;
    return isShared && IsToFail("mmap", ENOMEM)
        ? MAP_FAILED : Next<decltype(mmap)>("mmap")(address, length, protection, flags, file, offset);
}

extern "C" ssize_t read(int file, void* buffer, std::size_t length)
{
    if (EndsAs("FAILING_READ", file)) {
        errno = EIO;
        return -1;
    }
    return Next<decltype(read)>("read")(file, buffer, length);
}
