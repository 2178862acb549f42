#ifndef ARBORIST_DIAGNOSIS_PROCESS_INTERRUPTION_H
#define ARBORIST_DIAGNOSIS_PROCESS_INTERRUPTION_H

#include <string>

#include <sys/types.h>

namespace diagnosis {

/// Something that ENDING_SIGNALS tidy up before they end the process as they would have without
/// it: a folder with all that is in it, or a group of processes. A signal that was ignored, or that somebody else
/// handles, is left alone. A process that is forked tidies up nothing of its parent's. For one thread.
class Interruption {
public:
    Interruption() = default;
    ~Interruption() { Forget(); }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Of more than eight at a time, the latest are left as they are.
    void Remove(const std::string& folder);
    void Kill(pid_t group);
    void Forget();

private:
    int mSlot = -1;
};

} // namespace diagnosis

#endif
