#ifndef ARBORIST_DIAGNOSIS_DETECTION_STOP_SWITCH_H
#define ARBORIST_DIAGNOSIS_DETECTION_STOP_SWITCH_H

#include <mutex>

class Arborist;

namespace diagnosis {

/// Lets any thread stop the detection that runs at the time, which keeps its results so far; see Arborist::RequestStop.
class StopSwitch {
public:
    /// Without a running detection it does nothing: one that starts later is not stopped. Not for signal handlers.
    void Stop();

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

    std::mutex mLock;
    Arborist* mEngine = nullptr;
};

} // namespace diagnosis

#endif
