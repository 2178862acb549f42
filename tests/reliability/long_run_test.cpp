// Many detections in one process, whose memory and descriptors stay as they were.
#include <cstdlib>

#include <gtest/gtest.h>
#include <malloc.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "tests/reliability/observed_detection.h"

// Waiting for the disk would take most of the time, and is of no interest here.
extern "C" int fsync(int) { return 0; }
extern "C" int fdatasync(int) { return 0; }

namespace {

// How many: what the environment's ARBORIST_DETECTIONS says, or some hundred.
int Detections()
{
    const char* const text = std::getenv("ARBORIST_DETECTIONS");
    return text == nullptr ? 200 : std::atoi(text);
}

// The bytes that the process has allocated; always 0 where a sanitizer allocates.
std::size_t AllocatedBytes()
{
    return mallinfo2().uordblks;
}

class LongRun : public ObservedDetection {
protected:
    // Detects with one engine and with new ones, and records repairs, as a service does.
    void Work(Arborist& kept) const
    {
        ASSERT_EQ(Detect(kept).causes, CAUSES);
        ASSERT_EQ(DetectAnew().causes, CAUSES);
        UpdateRepairDb("R2");
        mRunner->calls.clear();
    }
};

TEST_F(LongRun, LeavesMemoryAndDescriptorsAsTheyWere)
{
    constexpr int WARM_UP = 20;
    constexpr std::size_t FLUCTUATION = 128 * 1024; // caches of SQLite fill for some thousand detections
    Arborist kept(mInfo);
    std::size_t bytes = 0;
    std::size_t files = 0;
    for (int detection = 0; detection < Detections(); detection += 2) {
        if (detection == WARM_UP) {
            bytes = AllocatedBytes();
            files = OpenFiles();
        }
        ASSERT_NO_FATAL_FAILURE(Work(kept));
    }
    EXPECT_LE(AllocatedBytes(), bytes + FLUCTUATION);
    EXPECT_EQ(OpenFiles(), files);
}

} // namespace
