#ifndef ARBORIST_FRAME_STOPPING_H
#define ARBORIST_FRAME_STOPPING_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "arborist/frame/lock_waits.h"

/// Thrown once when a detection ends early. Arborist::StartDetection and the driver catch it; it never leaves the
/// library.
struct DetectionStopped {};

/// Decides whether a detection must end early: a stop was requested, or its time limit is over.
///
/// Belongs to the thread of the detection, except for Request.
class StopRequest {
public:
    using Clock = std::chrono::steady_clock;

    /// Begins a detection with this time limit, nothing for none. A request from before has no effect on it.
    void Start(std::optional<std::chrono::duration<double>> limit);
    /// Ends it: from now on requests have no effect.
    void End();
    /// Requests the end of the running detection; does nothing without one. Any thread and any signal handler may call
    /// it.
    void Request() noexcept;

    /// True from the request on until the detection has stopped.
    bool IsDue();
    /// Marks the detection as stopped and throws: from now on it is not due again, so that cleaning up isn't stopped.
    [[noreturn]] void Stop();
    bool HasStopped() const { return mHasStopped; }
    /// See LockWaits::Sleep. False also if the detection must end or has stopped.
    bool WaitForLock(const std::string& file, int attempt);

    /// For tests: makes the next detections stop at their `question`th stop point, counted from 1; 0 for none.
    void StopAtQuestion(std::uint64_t question) { mStopAt = question; }
    /// For tests: the number of stop points that the detection has passed.
    std::uint64_t GetQuestions() const { return mQuestions; }

private:
    enum class State : int { IDLE, RUNNING, REQUESTED };

    std::atomic<State> mState = State::IDLE;
    static_assert(std::atomic<State>::is_always_lock_free);
    std::optional<Clock::time_point> mDeadline;
    std::uint64_t mQuestions = 0;
    std::uint64_t mStopAt = 0;
    bool mIsDue = false;
    bool mHasStopped = false;
    LockWaits mLockWaits;
};

/// While it exists, the stop points of this thread check this request, and its statements wait for locks as it allows; with
/// null they never stop and never wait. Of nested scopes only the innermost counts: a host may call the library from
/// within a detection.
class StopScope {
public:
    explicit StopScope(StopRequest* request);
    ~StopScope();
    StopScope(const StopScope&) = delete;
    StopScope& operator=(const StopScope&) = delete;

private:
    StopRequest* mOuter;
};

/// The places at which a detection may end early.
namespace StopPoint {

/// Throws DetectionStopped if the detection on this thread must end. Don't call it in a destructor.
void Pass();
/// True if Pass would throw, for callers that must not throw: they end their work, and their caller calls Pass.
bool IsDue();
/// True if the detection on this thread has stopped: what is left of it is only concluded.
bool HasStopped();
/// Waits a moment for a file that others have locked; false if the detection on this thread waits no longer. Without a
/// detection nobody waits. `attempt` counts the calls for one lock, from 0.
bool WaitForLock(const std::string& file, int attempt);

} // namespace StopPoint

#endif
