#include "diagnosis/process/signals.h"

#include <windows.h>

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

// As the system's own handler of Ctrl-C does; `raise` ends with 3, which is an exit status of the command.
void EndBySignal(int)
{
    TerminateProcess(GetCurrentProcess(), STATUS_CONTROL_C_EXIT);
}

void SignalActions::Handle(int signal, SignalHandler handler)
{
    HandleOnce(signal, handler);
}

void SignalActions::HandleOnce(int signal, SignalHandler handler)
{
    mReplaced.push_back({signal, handler, std::signal(signal, handler)});
}

SignalActions::~SignalActions()
{
    for (auto entry = mReplaced.rbegin(); entry != mReplaced.rend(); ++entry) {
        if (CurrentHandler(entry->signal) == entry->handler) {
            std::signal(entry->signal, entry->before);
        }
    }
}

SignalsHeldBack::SignalsHeldBack(std::initializer_list<int>) {}

void SignalsHeldBack::LetIn() const {}

} // namespace diagnosis
