#ifndef ARBORIST_DIAGNOSIS_PROCESS_SIGNALS_H
#define ARBORIST_DIAGNOSIS_PROCESS_SIGNALS_H

#include <initializer_list>
#include <utility>
#include <vector>

#include <csignal>

namespace diagnosis {

/// The signals by which a person, a system that shuts down, or a reader of results who left end a process.
inline constexpr std::initializer_list<int> ENDING_SIGNALS = {SIGHUP, SIGINT, SIGPIPE, SIGTERM};

using SignalHandler = void (*)(int);

/// How a signal is handled now.
SignalHandler CurrentHandler(int signal);

/// Handles signals in another way while it lives, and gives them their old handlers back at the end.
class SignalActions {
public:
    SignalActions() = default;
    ~SignalActions();
    SignalActions(const SignalActions&) = delete;
    SignalActions& operator=(const SignalActions&) = delete;

    /// `flags` are those of sigaction.
    void Handle(int signal, SignalHandler handler, int flags = 0);

private:
    std::vector<std::pair<int, struct sigaction>> mBefore;
};

/// Holds signals back while it lives: they come in when it ends.
class SignalsHeldBack {
public:
    explicit SignalsHeldBack(std::initializer_list<int> signals = ENDING_SIGNALS);
    ~SignalsHeldBack() { LetIn(); }
    SignalsHeldBack(const SignalsHeldBack&) = delete;
    SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

    /// Lets in what came in before, ahead of the end: in a process that was forked. May be called in a signal handler.
    void LetIn() const;
    /// The signals that were held back before.
    const sigset_t& MaskBefore() const { return mMaskBefore; }

private:
    sigset_t mMaskBefore = {};
};

} // namespace diagnosis

#endif
