// A detection whose n-th allocation fails, for each n: it may end with std::bad_alloc, and afterwards everything works as
// before. This program stands in for the allocation functions.
#include <cerrno>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <new>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "arborist/utilities/rooted_path.h"
#include "tests/reliability/call_counter.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/database_rows.h"

#if defined(ARBORIST_SANITIZES_ADDRESSES)
// The sanitizer's own functions allocate, and find leaks and corruption. Only those of C++ and of SQLite fail.
void* operator new(std::size_t size)
{
    void* const block = CallCounter::Fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return CallCounter::Fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
#else
// Those of the C library, which C++ and all libraries below use.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size)
{
    if (CallCounter::Fails()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size)
{
    if (CallCounter::Fails()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size)
{
    if (CallCounter::Fails()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_realloc(block, size);
}
}
#endif

// Waiting for the disk would take most of the time, and is of no interest here.
extern "C" int fsync(int) { return 0; }
extern "C" int fdatasync(int) { return 0; }

namespace {

using CallCounter::Failing;

#if defined(ARBORIST_SANITIZES_ADDRESSES)
sqlite3_mem_methods plain;

// Must come before SQLite's first use in the process.
void LetSqliteFail()
{
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &plain);
    sqlite3_mem_methods failing = plain;
    failing.xMalloc = [](int size) { return CallCounter::Fails() ? nullptr : plain.xMalloc(size); };
    failing.xRealloc = [](void* block, int size) {
        return CallCounter::Fails() ? nullptr : plain.xRealloc(block, size);
    };
    sqlite3_config(SQLITE_CONFIG_MALLOC, &failing);
}
#else
void LetSqliteFail() {}
#endif

class FailingAllocation : public ObservedDetection {
protected:
    static void SetUpTestSuite() { LetSqliteFail(); }

    // The number of allocations of a detection by an engine of its own.
    std::uint64_t CountAllocations() const
    {
        DetectAnew(); // what is created once in a process is there
        CallCounter::Start(0);
        DetectAnew();
        return CallCounter::Stop();
    }

    Answer DetectFailing(std::uint64_t number, Failing failing)
    {
        Answer answer;
        try {
            CallCounter::Start(number, failing);
            answer = DetectAnew();
        } catch (const std::bad_alloc&) { // from the constructor
            answer.isOutOfMemory = true;
        }
        CallCounter::Stop();
        return answer;
    }

    // Tries a sample of the allocations of a detection.
    void FailEach(Failing failing, std::uint64_t atMost)
    {
        const std::uint64_t allocations = CountAllocations();
        const std::size_t files = OpenFiles();
        FailEachOf(CallCounter::Sample(allocations, atMost), failing);
        EXPECT_EQ(OpenFiles(), files);
    }

    void FailEachOf(const std::vector<std::uint64_t>& numbers, Failing failing)
    {
        Arborist survivor(mInfo);
        for (const std::uint64_t number : numbers) {
            SCOPED_TRACE("allocation " + std::to_string(number));
            const std::size_t files = OpenFiles();
            EXPECT_TRUE(IsHonest(DetectFailing(number, failing)));
            EXPECT_EQ(OpenFiles(), files);
            CallCounter::Start(number, failing);
            const Answer answer = Detect(survivor);
            CallCounter::Stop();
            EXPECT_TRUE(IsHonest(answer));
            EXPECT_EQ(Detect(survivor).causes, CAUSES);
            EXPECT_EQ(DetectAnew().causes, CAUSES);
        }
    }
};

TEST_F(FailingAllocation, OneOfThemLeavesAnHonestAnswerAndAnEngineThatWorks)
{
    FailEach(Failing::ONE, 60);
}

TEST_F(FailingAllocation, AllFromOneOnLeaveAnHonestAnswerAndAnEngineThatWorks)
{
    FailEach(Failing::ALL_FROM_IT_ON, 30);
}

TEST_F(FailingAllocation, PathOfTheDeviceIsClosedWhereItsNameHasNoMemory)
{
    // A name of a descriptor with two digits is too long to be kept inside a string.
    std::deque<std::ifstream> held;
    while (held.size() < 10) {
        held.emplace_back("/dev/null");
    }
    const std::size_t files = OpenFiles();
    for (std::uint64_t number = 1; number <= 20; ++number) {
        CallCounter::Start(number, Failing::ONE);
        try {
            const RootedPath::Target target("/", "/dev/null");
        } catch (const std::bad_alloc&) {
        }
        CallCounter::Stop();
        EXPECT_EQ(OpenFiles(), files) << "allocation " << number;
    }
}

} // namespace
