#ifndef ARBORIST_DIAGNOSIS_PROCESS_SIGNALS_H
#define ARBORIST_DIAGNOSIS_PROCESS_SIGNALS_H

#include <initializer_list>
#include <vector>

#include <csignal>

namespace diagnosis {

/// The signals by which a user, a system shutdown or a closed output pipe end a process.
inline constexpr std::initializer_list<int> ENDING_SIGNALS = {SIGHUP, SIGINT, SIGPIPE, SIGTERM};

using SignalHandler = void (*)(int);

/// How a signal is handled now.
SignalHandler CurrentHandler(int signal);

/// Replaces handlers of signals as long as it exists and restores the old ones at the end, where they are still its own: a
/// host may have set others meanwhile.
class SignalActions {
public:
    SignalActions() = default;
    ~SignalActions();
    SignalActions(const SignalActions&) = delete;
    SignalActions& operator=(const SignalActions&) = delete;

    /// `flags` are those of sigaction.
    void Handle(int signal, SignalHandler handler, int flags = 0);

private:
    struct Replaced {
        int signal;
        SignalHandler handler;
        struct sigaction before;
    };
    std::vector<Replaced> mReplaced;
};

/// Blocks signals as long as it exists; pending ones are delivered when it ends.
class SignalsHeldBack {
public:
    explicit SignalsHeldBack(std::initializer_list<int> signals = ENDING_SIGNALS);
    ~SignalsHeldBack() { LetIn(); }
    SignalsHeldBack(const SignalsHeldBack&) = delete;
    SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

    /// Restores the previous signal mask early, for a forked process. May be called in a signal handler.
    void LetIn() const;
    /// The signal mask that was in force before.
    const sigset_t& MaskBefore() const { return mMaskBefore; }

private:
    sigset_t mMaskBefore = {};
};

} // namespace diagnosis

#endif
