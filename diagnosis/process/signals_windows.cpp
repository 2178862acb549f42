#include "diagnosis/process/signals.h"

namespace diagnosis {

SignalHandler CurrentHandler(int signal)
{
    const SignalHandler handler = std::signal(signal, SIG_DFL);
    std::signal(signal, handler);
    return handler;
}

// The system restores the default before it calls a handler.
void HandleOnce(int signal, SignalHandler handler)
{
    std::signal(signal, handler);
}

void SignalActions::Handle(int signal, SignalHandler handler)
{
    HandleOnce(signal, handler);
}

void SignalActions::HandleOnce(int signal, SignalHandler handler)
{
    mBefore.emplace_back(signal, std::signal(signal, handler));
}

SignalActions::~SignalActions()
{
    for (auto entry = mBefore.rbegin(); entry != mBefore.rend(); ++entry) {
        std::signal(entry->first, entry->second);
    }
}

SignalsHeldBack::SignalsHeldBack(std::initializer_list<int>) {}

void SignalsHeldBack::LetIn() const {}

} // namespace diagnosis
