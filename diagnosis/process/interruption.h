#ifndef ARBORIST_DIAGNOSIS_SCRATCH_INTERRUPTION_H
#define ARBORIST_DIAGNOSIS_SCRATCH_INTERRUPTION_H

#include <string>

#include <csignal>
#include <sys/types.h>

namespace diagnosis {

/// Something that SIGHUP, SIGINT, SIGPIPE and SIGTERM tidy up before they end the process as they would have without
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

/// Holds these signals back while it lives: between the making of something and its entry as an Interruption.
class SignalsHeldBack {
public:
    SignalsHeldBack();
    ~SignalsHeldBack();
    SignalsHeldBack(const SignalsHeldBack&) = delete;
    SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

private:
    sigset_t mMaskBefore = {};
};

} // namespace diagnosis

#endif
