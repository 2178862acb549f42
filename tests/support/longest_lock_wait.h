#ifndef ARBORIST_TESTS_SUPPORT_LONGEST_LOCK_WAIT_H
#define ARBORIST_TESTS_SUPPORT_LONGEST_LOCK_WAIT_H

#include "arborist/frame/lock_waits.h"

/// While it exists, detections wait this long for a lock, so that tests with a lock that stays are fast. 0 for not at all.
class LongestLockWait {
public:
    explicit LongestLockWait(int milliseconds) { LockWaits::SetLongest(milliseconds); }
    ~LongestLockWait() { LockWaits::SetLongest(LockWaits::LONGEST); }
    LongestLockWait(const LongestLockWait&) = delete;
    LongestLockWait& operator=(const LongestLockWait&) = delete;
};

#endif
