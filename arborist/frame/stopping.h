#ifndef ARBORIST_FRAME_STOPPING_H
#define ARBORIST_FRAME_STOPPING_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

/// Thrown where a detection ends early, once for each. Arborist::StartDetection and the driver catch it; it never leaves
/// the library.
struct DetectionStopped {};

/// Says whether a detection is to end early: because somebody asked for it, or because its time is over.
///
/// Belongs to the thread of the detection, except for Request.
class StopRequest {
public:
    using Clock = std::chrono::steady_clock;

    /// Begins a detection with this time limit, nothing for none. A request from before has no effect on it.
    void Start(std::optional<std::chrono::duration<double>> limit);
    /// Ends it: from now on requests have no effect.
    void End();
    /// Asks the running detection to end; without one nothing happens. Any thread and any signal handler may call it.
    void Request() noexcept;

    /// True from the request on until the detection has stopped.
    bool IsDue();
    /// Marks the detection as stopped and throws: from now on it is not due again, so that cleaning up isn't stopped.
    [[noreturn]] void Stop();
    bool HasStopped() const { return mHasStopped; }

    /// Makes the next detections stop when they ask for the `question`th time, for tests; 0 for not.
    void StopAtQuestion(std::uint64_t question) { mStopAt = question; }
    /// How often the detection has asked so far.
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
};

/// As long as it exists, the stop points of this thread ask this request; null for none, so that nothing is stopped. Of
/// nested scopes only the innermost counts: a host may call the library from within a detection.
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

/// Throws DetectionStopped if the detection on this thread is to end. Don't call it in a destructor.
void Pass();
/// The same as an answer, for callers that must not throw: they end their work, and their caller calls Pass.
bool IsDue();
/// True if the detection on this thread has stopped: what is left of it is only concluded.
bool HasStopped();

} // namespace StopPoint

#endif
