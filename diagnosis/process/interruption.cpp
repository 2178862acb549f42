#include "diagnosis/process/interruption.h"

#include <atomic>
#include <climits>
#include <csignal>
#include <cstring>
#include <optional>

#include <unistd.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/log_sweep.h"
#include "diagnosis/process/process_group.h"
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
// Number of slots in use and of detections that listen.
int listeners = 0;

/// The detection or the sweep that the next SIGINT stops, and the function that asks it to.
std::atomic<void*> stoppable = nullptr;
static_assert(std::atomic<void*>::is_always_lock_free);
void (*volatile requestStop)(void* target) = nullptr;
volatile std::sig_atomic_t hasStopped = 0;

void CleanUp(bool groups)
{
    for (const Slot& slot : slots) {
        if (slot.owner == getpid() && (slot.group != 0) == groups) {
            groups ? KillGroup(slot.group) : RemoveTree(slot.folder);
        }
    }
}

// Stops the detection, if there is one to stop, and listens to the signal again.
bool StopDetection(void (*handler)(int))
{
    void* const target = stoppable.exchange(nullptr);
    if (target == nullptr) {
        return false;
    }
    HandleOnce(SIGINT, handler);
    hasStopped = 1;
    requestStop(target);
    return true;
}

void TidyUpAndEnd(int number)
{
    // First: on Windows the detection goes on meanwhile, and the end of a program must not pass for its answer.
    const bool isStopped = number == SIGINT && StopDetection(TidyUpAndEnd);
    CleanUp(true); // programs before folders, as they may write into one
    if (isStopped) {
        return;
    }
    CleanUp(false);
    // The handler is reset and the signal not blocked, so the process ends here.
    EndBySignal(number);
}

void ListenToSignals()
{
    listening.emplace();
    for (const int number : ENDING_SIGNALS) {
        if (CurrentHandler(number) == SIG_DFL) {
            listening->HandleOnce(number, TidyUpAndEnd);
        }
    }
}

// Call both while the signals are blocked.
void AddListener()
{
    if (listeners++ == 0) {
        ListenToSignals();
    }
}

void RemoveListener()
{
    if (--listeners == 0) {
        listening.reset();
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
            AddListener();
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
        RemoveListener();
    }
    mSlot = -1;
}

StoppedBySignal::StoppedBySignal(Arborist& engine)
    : StoppedBySignal(&engine, [](void* target) { static_cast<Arborist*>(target)->RequestStop(); })
{
}

StoppedBySignal::StoppedBySignal(LogSweep& sweep)
    : StoppedBySignal(&sweep, [](void* target) { static_cast<LogSweep*>(target)->RequestStop(); })
{
}

StoppedBySignal::StoppedBySignal(void* target, void (*stop)(void* target))
{
    const SignalsHeldBack heldBack;
    AddListener();
    requestStop = stop;
    stoppable = target;
}

StoppedBySignal::~StoppedBySignal()
{
    const SignalsHeldBack heldBack;
    stoppable = nullptr;
    RemoveListener();
}

bool WasStoppedBySignal()
{
    return hasStopped != 0;
}

void EndIfStoppedBySignal()
{
    if (WasStoppedBySignal()) {
        EndBySignal(SIGINT);
    }
}

} // namespace diagnosis
