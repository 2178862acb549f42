#include "diagnosis/process/signals.h"

namespace diagnosis {

SignalHandler CurrentHandler(int signal)
{
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

void SignalActions::Handle(int signal, SignalHandler handler, int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
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
