#include "tests/reliability/failing_vfs.h"

#include <sqlite3.h>

#include "tests/reliability/call_counter.h"

namespace {

using Call = FailingVfs::Call;

sqlite3_vfs* below = nullptr; // SQLite's own
sqlite3_vfs own;
Call watched = Call::OPEN;
int failure = SQLITE_IOERR;

// A file of ours, which the file of SQLite's own follows in memory.
struct File {
    sqlite3_file base;
    sqlite3_file* Inner() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* Inner(sqlite3_file* file)
{
    return reinterpret_cast<File*>(file)->Inner();
}

bool Fails(Call call)
{
    return call == watched && CallCounter::Fails();
}

// Calls the method of SQLite's own file unless the call is to fail.
template <auto Method, typename... Arguments>
int Forward(sqlite3_file* file, Arguments... arguments)
{
    return (Inner(file)->pMethods->*Method)(Inner(file), arguments...);
}

template <Call CALL, auto Method, typename... Arguments>
int ForwardUnlessFails(sqlite3_file* file, Arguments... arguments)
{
    return Fails(CALL) ? failure : Forward<Method>(file, arguments...);
}

void Barrier(sqlite3_file* file)
{
    Inner(file)->pMethods->xShmBarrier(Inner(file));
}

constexpr sqlite3_io_methods METHODS = [] {
    using Methods = sqlite3_io_methods;
    Methods methods{};
    methods.iVersion = 2;
    methods.xClose = Forward<&Methods::xClose>;
    methods.xRead = ForwardUnlessFails<Call::READ, &Methods::xRead, void*, int, sqlite3_int64>;
    methods.xWrite = ForwardUnlessFails<Call::WRITE, &Methods::xWrite, const void*, int, sqlite3_int64>;
    methods.xTruncate = ForwardUnlessFails<Call::TRUNCATE, &Methods::xTruncate, sqlite3_int64>;
    methods.xSync = ForwardUnlessFails<Call::SYNC, &Methods::xSync, int>;
    methods.xFileSize = Forward<&Methods::xFileSize, sqlite3_int64*>;
    methods.xLock = ForwardUnlessFails<Call::LOCK, &Methods::xLock, int>;
    methods.xUnlock = Forward<&Methods::xUnlock, int>;
    methods.xCheckReservedLock = Forward<&Methods::xCheckReservedLock, int*>;
    methods.xFileControl = Forward<&Methods::xFileControl, int, void*>;
    methods.xSectorSize = Forward<&Methods::xSectorSize>;
    methods.xDeviceCharacteristics = Forward<&Methods::xDeviceCharacteristics>;
    methods.xShmMap = Forward<&Methods::xShmMap, int, int, int, void volatile**>;
    methods.xShmLock = Forward<&Methods::xShmLock, int, int, int>;
    methods.xShmBarrier = Barrier;
    methods.xShmUnmap = Forward<&Methods::xShmUnmap, int>;
    return methods;
}();

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* flagsOut)
{
    file->pMethods = nullptr;
    if (Fails(Call::OPEN)) {
        return failure;
    }
    const int result = below->xOpen(below, name, Inner(file), flags, flagsOut);
    file->pMethods = Inner(file)->pMethods == nullptr ? nullptr : &METHODS;
    return result;
}

int Remove(sqlite3_vfs*, const char* name, int isSynced)
{
    return Fails(Call::REMOVE) ? failure : below->xDelete(below, name, isSynced);
}

} // namespace

FailingVfs::FailingVfs()
{
    below = sqlite3_vfs_find(nullptr);
    own = *below;
    own.zName = "failing";
    own.szOsFile = static_cast<int>(sizeof(File)) + below->szOsFile;
    own.xOpen = Open;
    own.xDelete = Remove;
    sqlite3_vfs_register(&own, 1);
}

FailingVfs::~FailingVfs()
{
    sqlite3_vfs_unregister(&own);
    sqlite3_vfs_register(below, 1);
}

void FailingVfs::Watch(Call call, int code)
{
    watched = call;
    failure = code;
}
