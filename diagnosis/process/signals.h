#ifndef ARBORIST_DIAGNOSIS_PROCESS_SIGNALS_H
#define ARBORIST_DIAGNOSIS_PROCESS_SIGNALS_H

#include <initializer_list>
#include <vector>

#include <csignal>

namespace diagnosis {

using SignalHandler = void (*)(int);

#ifdef _WIN32
/// Ctrl-C, the end of the program by `raise`, and Ctrl-Break. Each is handled once, in a thread of the system's own, and
/// none can be blocked.
inline constexpr std::initializer_list<int> ENDING_SIGNALS = {SIGINT, SIGTERM, SIGBREAK};
inline constexpr std::initializer_list<int> SIGNALS_FROM_OUTSIDE = ENDING_SIGNALS;
inline constexpr int CLOSED_PIPE = -1; // writing fails, and that is all
using SignalAction = SignalHandler;
using SignalMask = int;
#else
/// The signals by which a user, a system shutdown or a closed output pipe end a process.
inline constexpr std::initializer_list<int> ENDING_SIGNALS = {SIGHUP, SIGINT, SIGPIPE, SIGTERM};
/// Those of them that the process doesn't raise itself, and the other one.
inline constexpr std::initializer_list<int> SIGNALS_FROM_OUTSIDE = {SIGHUP, SIGINT, SIGTERM};
inline constexpr int CLOSED_PIPE = SIGPIPE;
using SignalAction = struct sigaction;
using SignalMask = sigset_t;
#endif

/// How a signal is handled now.
SignalHandler CurrentHandler(int signal);

/// Lets `handler` take the next signal of this kind and no further one. May be called in a signal handler.
void HandleOnce(int signal, SignalHandler handler);

/// Ends the process as the signal does where nothing handles it, so that the caller's shell sees it. May be called in a
/// signal handler.
void EndBySignal(int signal);

/// Replaces handlers of signals as long as it exists and restores the old ones at the end, where they are still its own: a
/// host may have set others meanwhile.
class SignalActions {
public:
    SignalActions() = default;
    ~SignalActions();
    SignalActions(const SignalActions&) = delete;
    SignalActions& operator=(const SignalActions&) = delete;

    void Handle(int signal, SignalHandler handler);
    /// The same for one signal of this kind, after which the default is restored.
    void HandleOnce(int signal, SignalHandler handler);

private:
    struct Replaced {
        int signal;
        SignalHandler handler;
        SignalAction before;
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
    const SignalMask& MaskBefore() const { return mMaskBefore; }

private:
    SignalMask mMaskBefore = {};
};

} // namespace diagnosis

#endif
