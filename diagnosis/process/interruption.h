#ifndef ARBORIST_DIAGNOSIS_PROCESS_INTERRUPTION_H
#define ARBORIST_DIAGNOSIS_PROCESS_INTERRUPTION_H

#include <string>

#include <sys/types.h>

class Arborist;
class LogSweep;

namespace diagnosis {

/// A folder with its content, or a group of processes, that is cleaned up when one of ENDING_SIGNALS ends the process.
/// The process still ends by that signal. Signals that were ignored or have another handler are left alone. A forked
/// process cleans up nothing of its parent. Not thread-safe.
class Interruption {
public:
    Interruption() = default;
    ~Interruption() { Forget(); }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// At most eight objects can be active; further ones are not cleaned up.
    void Remove(const std::string& folder);
    void Kill(pid_t group);
    void Forget();

private:
    int mSlot = -1;
};

/// As long as it exists, the first SIGINT does not end the process: it kills the programs that a detection or a sweep runs
/// and asks it to stop, so that its results so far can be shown. A second one ends the process as without this object.
/// One at a time; the signal is left alone if it was ignored or had another handler.
class StoppedBySignal {
public:
    /// `engine` or `sweep` must outlive the object.
    explicit StoppedBySignal(Arborist& engine);
    explicit StoppedBySignal(LogSweep& sweep);
    ~StoppedBySignal();
    StoppedBySignal(const StoppedBySignal&) = delete;
    StoppedBySignal& operator=(const StoppedBySignal&) = delete;

private:
    StoppedBySignal(void* target, void (*stop)(void* target));
};

/// True if a SIGINT has stopped a detection of this process.
bool WasStoppedBySignal();
/// Ends the process by SIGINT if that is so: call it when everything is shown and cleaned up.
void EndIfStoppedBySignal();

} // namespace diagnosis

#endif
