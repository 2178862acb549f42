#include "arborist/frame/stopping.h"

#include <utility>

namespace {

thread_local StopRequest* innermost = nullptr;

// A limit of years counts as none: the clock can't represent its end.
constexpr double LONGEST_LIMIT = 1e9;

} // namespace

void StopRequest::Start(std::optional<std::chrono::duration<double>> limit)
{
    mDeadline.reset();
    if (limit && limit->count() < LONGEST_LIMIT) {
        mDeadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(*limit);
    }
    mQuestions = 0;
    mIsDue = false;
    mHasStopped = false;
    mLockWaits = LockWaits();
    mState.store(State::RUNNING);
}

void StopRequest::End()
{
    mState.store(State::IDLE);
}

void StopRequest::Request() noexcept
{
    State running = State::RUNNING;
    mState.compare_exchange_strong(running, State::REQUESTED);
}

bool StopRequest::IsDue()
{
    if (mHasStopped || mIsDue) {
        return mIsDue;
    }
    ++mQuestions;
    mIsDue = mQuestions == mStopAt || mState.load(std::memory_order_relaxed) == State::REQUESTED ||
        (mDeadline && Clock::now() >= *mDeadline);
    return mIsDue;
}

void StopRequest::Stop()
{
    mHasStopped = true;
    mIsDue = false;
    throw DetectionStopped();
}

bool StopRequest::WaitForLock(const std::string& file, int attempt)
{
    return !mHasStopped && !IsDue() && mLockWaits.Sleep(file, attempt);
}

StopScope::StopScope(StopRequest* request) : mOuter(std::exchange(innermost, request)) {}

StopScope::~StopScope()
{
    innermost = mOuter;
}

void StopPoint::Pass()
{
    if (IsDue()) {
        innermost->Stop();
    }
}

bool StopPoint::HasStopped()
{
    return innermost != nullptr && innermost->HasStopped();
}

bool StopPoint::IsDue()
{
    return innermost != nullptr && innermost->IsDue();
}

bool StopPoint::WaitForLock(const std::string& file, int attempt)
{
    return innermost != nullptr && innermost->WaitForLock(file, attempt);
}
