#include "diagnosis/scratch/folder_lock.h"

#include <memory>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace diagnosis {
namespace {

TEST(FolderLockTest, TheNextHasItsTurnWhenTheFirstIsDone)
{
    const TempDir dir;
    auto first = std::make_unique<FolderLock>();
    EXPECT_TRUE(first->Take(dir.Path("."), nullptr));
    FolderLock second;
    EXPECT_FALSE(second.Take(dir.Path("."), nullptr));
    FolderLock third;
    EXPECT_TRUE(third.Take(dir.Path("."), [&first](int tries) {
        EXPECT_LT(tries, 2);
        if (tries == 1) {
            first.reset();
        }
        return true;
    }));
}

TEST(FolderLockTest, WhatCannotBeLockedHindersNobody)
{
    const TempDir dir;
    FolderLock lock;
    EXPECT_TRUE(lock.Take(dir.Path("nowhere"), nullptr));
}

} // namespace
} // namespace diagnosis
