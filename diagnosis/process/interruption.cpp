#include "diagnosis/process/interruption.h"

#include <climits>
#include <cstring>
#include <optional>

#include <unistd.h>

#include "diagnosis/process/signals.h"
#include "diagnosis/process/tree_removal.h"

namespace diagnosis {

namespace {

// A capture that has to copy the log uses four.
constexpr int SLOTS = 8;

/// What the signal handler cleans up: a process group, or without one a folder. Written while the signals are blocked.
struct Slot {
    pid_t owner; ///< 0 while it is free
    pid_t group;
    char folder[PATH_MAX];
};
Slot slots[SLOTS];
std::optional<SignalActions> listening;
int usedSlots = 0;

void TidyUpAndEnd(int number)
{
    // Programs first, as they may write into a folder.
    for (const bool isGroup : {true, false}) {
        for (const Slot& slot : slots) {
            if (slot.owner != getpid() || (slot.group != 0) != isGroup) {
                continue;
            }
            isGroup ? static_cast<void>(kill(-slot.group, SIGKILL)) : RemoveTree(slot.folder);
        }
    }
    // The handler is reset and the signal not blocked, so the process ends here.
    raise(number);
}

void ListenToSignals()
{
    listening.emplace();
    for (const int number : ENDING_SIGNALS) {
        if (CurrentHandler(number) == SIG_DFL) {
            listening->Handle(number, TidyUpAndEnd, static_cast<int>(SA_RESETHAND | SA_NODEFER));
        }
    }
}

int TakeSlot(const std::string& folder, pid_t group)
{
    const SignalsHeldBack heldBack;
    for (int number = 0; number < SLOTS; ++number) {
        Slot& slot = slots[number];
        if (slot.owner != getpid() && folder.size() < sizeof(slot.folder)) {
            slot.group = group;
            std::memcpy(slot.folder, folder.c_str(), folder.size() + 1);
            slot.owner = getpid();
            if (usedSlots++ == 0) {
                ListenToSignals();
            }
            return number;
        }
    }
    return -1;
}

} // namespace

void Interruption::Remove(const std::string& folder)
{
    Forget();
    mSlot = TakeSlot(folder, 0);
}

void Interruption::Kill(pid_t group)
{
    Forget();
    mSlot = TakeSlot("", group);
}

void Interruption::Forget()
{
    const SignalsHeldBack heldBack;
    if (mSlot >= 0 && slots[mSlot].owner == getpid()) {
        slots[mSlot].owner = 0;
        if (--usedSlots == 0) {
            listening.reset();
        }
    }
    mSlot = -1;
}

} // namespace diagnosis
