// Detections over calls of the file system that fail. This program stands in for those calls, for the libraries below the
// library, too, so that permissions fail for every user.
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "tests/reliability/call_counter.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/case_name.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"

namespace {

enum class Call { OPEN, READ, WRITE, RENAME, MAKE_FOLDER, REMOVE };

Call watched = Call::OPEN;
int failure = EIO;

bool Fails(Call call)
{
    if (call != watched || !CallCounter::Fails()) {
        return false;
    }
    errno = failure;
    return true;
}

template <typename Function>
Function* Next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

mode_t ModeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

// Calls the function of the C library unless the call is to fail.
#define STAND_IN(kind, failed, Result, name, parameters, arguments) \
    extern "C" Result name parameters                               \
    {                                                               \
        static auto* const next = Next<Result parameters>(#name);   \
        return Fails(kind) ? failed : next arguments;               \
    }
#define STAND_IN_FOR_OPEN(name)                                                    \
    extern "C" int name(const char* path, int flags, ...)                          \
    {                                                                              \
        static auto* const next = Next<int(const char*, int, ...)>(#name);         \
        va_list arguments;                                                         \
        va_start(arguments, flags);                                                \
        const mode_t mode = ModeOf(flags, arguments);                              \
        va_end(arguments);                                                         \
        return Fails(Call::OPEN) ? -1 : next(path, flags, mode);                   \
    }
#define STAND_IN_FOR_OPENAT(name)                                                  \
    extern "C" int name(int folder, const char* path, int flags, ...)              \
    {                                                                              \
        static auto* const next = Next<int(int, const char*, int, ...)>(#name);    \
        va_list arguments;                                                         \
        va_start(arguments, flags);                                                \
        const mode_t mode = ModeOf(flags, arguments);                              \
        va_end(arguments);                                                         \
        return Fails(Call::OPEN) ? -1 : next(folder, path, flags, mode);           \
    }

STAND_IN_FOR_OPEN(open)
STAND_IN_FOR_OPEN(open64)
STAND_IN_FOR_OPENAT(openat)
STAND_IN_FOR_OPENAT(openat64)
STAND_IN(Call::OPEN, nullptr, FILE*, fopen, (const char* path, const char* mode), (path, mode))
STAND_IN(Call::OPEN, nullptr, FILE*, fopen64, (const char* path, const char* mode), (path, mode))
STAND_IN(Call::OPEN, nullptr, DIR*, opendir, (const char* path), (path))
STAND_IN(Call::READ, -1, ssize_t, read, (int file, void* bytes, size_t length), (file, bytes, length))
STAND_IN(Call::READ, -1, ssize_t, pread, (int file, void* bytes, size_t length, off_t from), (file, bytes, length, from))
STAND_IN(Call::READ, -1, ssize_t, pread64, (int file, void* bytes, size_t length, off64_t from),
    (file, bytes, length, from))
STAND_IN(Call::WRITE, -1, ssize_t, write, (int file, const void* bytes, size_t length), (file, bytes, length))
STAND_IN(Call::WRITE, -1, ssize_t, pwrite64, (int file, const void* bytes, size_t length, off64_t from),
    (file, bytes, length, from))
STAND_IN(Call::WRITE, -1, ssize_t, copy_file_range,
    (int from, off64_t* fromAt, int to, off64_t* toAt, size_t length, unsigned int flags),
    (from, fromAt, to, toAt, length, flags))
STAND_IN(Call::WRITE, 0, size_t, fwrite, (const void* bytes, size_t size, size_t count, FILE* file),
    (bytes, size, count, file))
STAND_IN(Call::RENAME, -1, int, rename, (const char* from, const char* to), (from, to))
STAND_IN(Call::MAKE_FOLDER, -1, int, mkdir, (const char* path, mode_t mode), (path, mode))
STAND_IN(Call::REMOVE, -1, int, unlink, (const char* path), (path))
STAND_IN(Call::REMOVE, -1, int, rmdir, (const char* path), (path))
STAND_IN(Call::REMOVE, -1, int, remove, (const char* path), (path))
// Waiting for the disk would take most of the time, and is of no interest here.
extern "C" int fsync(int) { return 0; }
extern "C" int fdatasync(int) { return 0; }

namespace {

using CallCounter::Failing;
using testing::ElementsAre;

constexpr char EVENT_LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char DATABASES[] = "programdata/Comms/Lumbra/zxdetectrepair/databases";

struct CallCase {
    const char* name;
    Call call;
    int error;
    Failing failing;
};
void PrintTo(const CallCase& callCase, std::ostream* out) { *out << callCase.name; }

class FailingFileCall : public ObservedDetection, public testing::WithParamInterface<CallCase> {
protected:
    // A device on which nothing was ever detected, so that folders are made, too.
    void ForgetDetections() const
    {
        std::filesystem::remove_all(mDir.Path("programdata/Comms/Lumbra/zxdetectrepair"));
        std::filesystem::remove_all(mDir.Path("copies"));
    }

    Answer DetectFirst(std::uint64_t number)
    {
        ForgetDetections();
        watched = GetParam().call;
        failure = GetParam().error;
        CallCounter::Start(number, GetParam().failing);
        const Answer answer = DetectAnew();
        UpdateRepairDb("R2");
        mCalls = CallCounter::Stop();
        return answer;
    }

    // The next one who opens it for writing takes back what was left unfinished.
    void ExpectWhole(const std::string& database) const
    {
        if (mDir.Has(database)) {
            EventLogBuilder::Run(mDir.Path(database), "begin immediate; commit");
            EXPECT_THAT(DatabaseRows(mDir.Path(database), "pragma quick_check"), ElementsAre("ok"));
        }
    }

    std::uint64_t mCalls = 0;
};

TEST_P(FailingFileCall, LeavesADetectionHonestAndItsStoresWhole)
{
    const std::string log = mDir.Read(EVENT_LOG);
    const std::string archive = mDir.Read("device/data/battery.zip");
    DetectAnew();
    DetectFirst(0);
    const std::uint64_t calls = mCalls;
    EXPECT_GT(calls, 0U);
    const std::size_t files = OpenFiles();
    for (const std::uint64_t number : CallCounter::Sample(calls, 20)) {
        SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls));
        EXPECT_TRUE(IsHonest(DetectFirst(number)));
        ExpectWhole(std::string(DATABASES) + "/JankEventDb.db");
        ExpectWhole(std::string(DATABASES) + "/repair_record.db");
        EXPECT_EQ(OpenFiles(), files);
        EXPECT_EQ(DetectAnew().causes, CAUSES);
        EXPECT_EQ(mDir.Read(EVENT_LOG), log);
        EXPECT_EQ(mDir.Read("device/data/battery.zip"), archive);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, FailingFileCall, testing::Values(
    CallCase{"OpenWithoutPermission", Call::OPEN, EACCES, Failing::ONE},
    CallCase{"EveryOpenWithoutPermission", Call::OPEN, EACCES, Failing::ALL_FROM_IT_ON},
    CallCase{"NoDescriptorLeft", Call::OPEN, EMFILE, Failing::ALL_FROM_IT_ON},
    CallCase{"Read", Call::READ, EIO, Failing::ONE},
    CallCase{"EveryRead", Call::READ, EIO, Failing::ALL_FROM_IT_ON},
    CallCase{"Write", Call::WRITE, EIO, Failing::ONE},
    CallCase{"DiskFull", Call::WRITE, ENOSPC, Failing::ALL_FROM_IT_ON},
    CallCase{"ReadOnlyFileSystem", Call::WRITE, EROFS, Failing::ALL_FROM_IT_ON},
    CallCase{"Rename", Call::RENAME, EACCES, Failing::ONE},
    CallCase{"MakeFolder", Call::MAKE_FOLDER, EACCES, Failing::ONE},
    CallCase{"EveryMakeFolder", Call::MAKE_FOLDER, ENOSPC, Failing::ALL_FROM_IT_ON},
    CallCase{"Remove", Call::REMOVE, EACCES, Failing::ONE}), CaseName());

} // namespace
