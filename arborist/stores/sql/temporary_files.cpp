#include "arborist/stores/sql/temporary_files.h"

#include <algorithm>

#include <sqlite3.h>

namespace FT::sql {

struct TemporaryFiles::Vfs {
    sqlite3_vfs own{};
    sqlite3_vfs* base = nullptr; // SQLite's own, or the one that the host made the default
    std::string name;
    const std::uint64_t* mostBytes = nullptr;
    std::uint64_t bytes = 0; // of all temporary files that are open
};

namespace {

using Vfs = TemporaryFiles::Vfs;

// A temporary file. The file of the system below follows it in memory.
struct alignas(8) TemporaryFile {
    sqlite3_file base;
    Vfs* vfs;
    std::uint64_t size;
};

TemporaryFile& Temporary(sqlite3_file* file)
{
    return *reinterpret_cast<TemporaryFile*>(file);
}

sqlite3_file* Below(sqlite3_file* file)
{
    return reinterpret_cast<sqlite3_file*>(&Temporary(file) + 1);
}

Vfs& VfsOf(sqlite3_vfs* vfs)
{
    return *static_cast<Vfs*>(vfs->pAppData);
}

// Passes a call to the file system below; a call of a file to the file below.
template <auto Method, typename Result, typename... Arguments>
Result Pass(sqlite3_vfs* vfs, Arguments... arguments)
{
    sqlite3_vfs* const base = VfsOf(vfs).base;
    return (base->*Method)(base, arguments...);
}

template <auto Method, typename... Arguments>
int PassToFile(sqlite3_file* file, Arguments... arguments)
{
    return (Below(file)->pMethods->*Method)(Below(file), arguments...);
}

int Write(sqlite3_file* file, const void* content, int length, sqlite3_int64 offset)
{
    TemporaryFile& temporary = Temporary(file);
    const std::uint64_t end = static_cast<std::uint64_t>(offset) + static_cast<std::uint64_t>(length);
    const std::uint64_t growth = end - std::min(end, temporary.size);
    if (temporary.vfs->bytes + growth > *temporary.vfs->mostBytes) {
        return SQLITE_FULL;
    }
    const int result = PassToFile<&sqlite3_io_methods::xWrite>(file, content, length, offset);
    temporary.vfs->bytes += growth;
    temporary.size += growth;
    return result;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    TemporaryFile& temporary = Temporary(file);
    const std::uint64_t shorter = temporary.size - std::min(temporary.size, static_cast<std::uint64_t>(size));
    const int result = PassToFile<&sqlite3_io_methods::xTruncate>(file, size);
    temporary.vfs->bytes -= shorter;
    temporary.size -= shorter;
    return result;
}

int Close(sqlite3_file* file)
{
    TemporaryFile& temporary = Temporary(file);
    temporary.vfs->bytes -= temporary.size;
    temporary.size = 0;
    return PassToFile<&sqlite3_io_methods::xClose>(file);
}

// Version 1 has all that temporary files need: they are neither shared nor mapped.
constexpr sqlite3_io_methods METHODS = [] {
    using Methods = sqlite3_io_methods;
    Methods methods{};
    methods.iVersion = 1;
    methods.xClose = Close;
    methods.xRead = PassToFile<&Methods::xRead, void*, int, sqlite3_int64>;
    methods.xWrite = Write;
    methods.xTruncate = Truncate;
    methods.xSync = PassToFile<&Methods::xSync, int>;
    methods.xFileSize = PassToFile<&Methods::xFileSize, sqlite3_int64*>;
    methods.xLock = PassToFile<&Methods::xLock, int>;
    methods.xUnlock = PassToFile<&Methods::xUnlock, int>;
    methods.xCheckReservedLock = PassToFile<&Methods::xCheckReservedLock, int*>;
    methods.xFileControl = PassToFile<&Methods::xFileControl, int, void*>;
    methods.xSectorSize = PassToFile<&Methods::xSectorSize>;
    methods.xDeviceCharacteristics = PassToFile<&Methods::xDeviceCharacteristics>;
    return methods;
}();

// Temporary files have no name.
int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* flagsOut)
{
    sqlite3_vfs* const base = VfsOf(vfs).base;
    if (name != nullptr) {
        return base->xOpen(base, name, file, flags, flagsOut);
    }
    Temporary(file) = {{nullptr}, &VfsOf(vfs), 0};
    const int result = base->xOpen(base, name, Below(file), flags, flagsOut);
    file->pMethods = Below(file)->pMethods == nullptr ? nullptr : &METHODS;
    return result;
}

void PassAllCalls(sqlite3_vfs& vfs)
{
    using Own = sqlite3_vfs;
    vfs.xOpen = Open;
    vfs.xDelete = Pass<&Own::xDelete, int, const char*, int>;
    vfs.xAccess = Pass<&Own::xAccess, int, const char*, int, int*>;
    vfs.xFullPathname = Pass<&Own::xFullPathname, int, const char*, int, char*>;
    vfs.xDlOpen = Pass<&Own::xDlOpen, void*, const char*>;
    vfs.xDlError = Pass<&Own::xDlError, void, int, char*>;
    vfs.xDlSym = [](Own* own, void* library, const char* name) {
        Own* const base = VfsOf(own).base;
        return base->xDlSym(base, library, name);
    };
    vfs.xDlClose = Pass<&Own::xDlClose, void, void*>;
    vfs.xRandomness = Pass<&Own::xRandomness, int, int, char*>;
    vfs.xSleep = Pass<&Own::xSleep, int, int>;
    vfs.xCurrentTime = Pass<&Own::xCurrentTime, int, double*>;
    vfs.xGetLastError = Pass<&Own::xGetLastError, int, int, char*>;
    if (vfs.iVersion >= 2) {
        vfs.xCurrentTimeInt64 = Pass<&Own::xCurrentTimeInt64, int, sqlite3_int64*>;
    }
}

std::string NameOf(const Vfs& vfs)
{
    return "arborist " + std::to_string(reinterpret_cast<std::uintptr_t>(&vfs));
}

} // namespace

TemporaryFiles::TemporaryFiles(const std::uint64_t& mostBytes) : mVfs(std::make_unique<Vfs>())
{
    mVfs->base = sqlite3_vfs_find(nullptr);
    if (mVfs->base == nullptr) {
        return;
    }
    mVfs->mostBytes = &mostBytes;
    mVfs->name = NameOf(*mVfs);
    mVfs->own.iVersion = std::min(mVfs->base->iVersion, 2);
    mVfs->own.szOsFile = static_cast<int>(sizeof(TemporaryFile)) + mVfs->base->szOsFile;
    mVfs->own.mxPathname = mVfs->base->mxPathname;
    mVfs->own.zName = mVfs->name.c_str();
    mVfs->own.pAppData = mVfs.get();
    PassAllCalls(mVfs->own);
    sqlite3_vfs_register(&mVfs->own, 0); // succeeds where SQLite is initialised, as it is after sqlite3_vfs_find
}

TemporaryFiles::~TemporaryFiles()
{
    if (mVfs->base != nullptr) {
        sqlite3_vfs_unregister(&mVfs->own);
    }
}

const char* TemporaryFiles::GetName() const
{
    return mVfs->base == nullptr ? nullptr : mVfs->own.zName;
}

} // namespace FT::sql
