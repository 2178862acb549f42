#ifndef ARBORIST_DIAGNOSIS_DETECTION_STOP_SWITCH_H
#define ARBORIST_DIAGNOSIS_DETECTION_STOP_SWITCH_H

#include <mutex>

class Arborist;

namespace diagnosis {

/// Lets any thread stop the detection that runs at the time, which keeps its results so far; see Arborist::RequestStop.
class StopSwitch {
public:
    /// Without a call that runs it does nothing: one that starts later is not stopped. Not for signal handlers.
    void Stop();
    /// Whether the call that runs is to end.
    bool IsAsked() const;
    /// Asks the engine again, which forgets what it was asked before its detection began.
    void AskAgain();

    /// Marks a running call, also on its way to the detection: a Stop during its life is kept. Calls may nest.
    class Call {
    public:
        /// A null switch remembers nothing.
        explicit Call(StopSwitch* target);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        StopSwitch* mSwitch;
    };

    /// As long as it exists, Stop reaches `engine`. A null switch reaches nothing. One at a time for each switch.
    class Running {
    public:
        Running(StopSwitch* target, Arborist& engine);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        StopSwitch* mSwitch;
    };

private:
    void Reach(Arborist* engine);

    mutable std::mutex mLock;
    int mCalls = 0;
    bool mIsAsked = false;
    Arborist* mEngine = nullptr;
};

} // namespace diagnosis

#endif
