#ifndef ARBORIST_DIAGNOSIS_PROCESS_INTERRUPTION_H
#define ARBORIST_DIAGNOSIS_PROCESS_INTERRUPTION_H

#include <string>

#include <sys/types.h>

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

} // namespace diagnosis

#endif
