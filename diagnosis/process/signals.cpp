#include "diagnosis/process/signals.h"

namespace diagnosis {

namespace {

constexpr int ONCE = static_cast<int>(SA_RESETHAND | SA_NODEFER);

SignalAction ActionOf(SignalHandler handler, int flags)
{
    SignalAction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    return action;
}

} // namespace

SignalHandler CurrentHandler(int signal)
{
    SignalAction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

void HandleOnce(int signal, SignalHandler handler)
{
    const SignalAction action = ActionOf(handler, ONCE);
    sigaction(signal, &action, nullptr);
}

void EndBySignal(int signal)
{
    raise(signal);
}

void SignalActions::Handle(int signal, SignalHandler handler)
{
    const SignalAction action = ActionOf(handler, 0);
    sigaction(signal, &action, &mReplaced.emplace_back(Replaced{signal, handler, action}).before);
}

void SignalActions::HandleOnce(int signal, SignalHandler handler)
{
    const SignalAction action = ActionOf(handler, ONCE);
    sigaction(signal, &action, &mReplaced.emplace_back(Replaced{signal, handler, action}).before);
}

SignalActions::~SignalActions()
{
    for (auto entry = mReplaced.rbegin(); entry != mReplaced.rend(); ++entry) {
        if (CurrentHandler(entry->signal) == entry->handler) {
            sigaction(entry->signal, &entry->before, nullptr);
        }
    }
}

SignalsHeldBack::SignalsHeldBack(std::initializer_list<int> signals)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals) {
        sigaddset(&set, signal);
    }
    sigprocmask(SIG_BLOCK, &set, &mMaskBefore);
}

void SignalsHeldBack::LetIn() const
{
    sigprocmask(SIG_SETMASK, &mMaskBefore, nullptr);
}

} // namespace diagnosis
