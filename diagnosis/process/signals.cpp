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
    sigaction(signal, &action, &mBefore.emplace_back(signal, action).second);
}

SignalActions::~SignalActions()
{
    for (auto entry = mBefore.rbegin(); entry != mBefore.rend(); ++entry) {
        sigaction(entry->first, &entry->second, nullptr);
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
