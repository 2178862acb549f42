#include "tools/arborist/scratch/scratch.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <unistd.h>

#include "tools/arborist/scratch/tree_removal.h"

namespace command {

namespace fs = std::filesystem;

namespace {

constexpr int SIGNALS[] = {SIGHUP, SIGINT, SIGPIPE, SIGTERM};
// A bundle's and that of a log that is copied; one more of each would be a lot.
constexpr int SLOTS = 4;

/// A folder that the signal handler removes. It reads the path only while `owner` is set.
struct Slot {
    volatile pid_t owner;
    char path[PATH_MAX];
};
Slot slots[SLOTS];
struct sigaction actionsBefore[std::size(SIGNALS)];
int usedSlots = 0;

void RemoveAndEnd(int number)
{
    for (Slot& slot : slots) {
        if (slot.owner == getpid()) {
            RemoveTree(slot.path);
        }
    }
    // The handler is reset and not blocked: the process ends here.
    raise(number);
}

void ListenToSignals()
{
    struct sigaction action = {};
    action.sa_handler = RemoveAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    for (std::size_t i = 0; i < std::size(SIGNALS); ++i) {
        sigaction(SIGNALS[i], nullptr, &actionsBefore[i]);
        if (actionsBefore[i].sa_handler == SIG_DFL) {
            sigaction(SIGNALS[i], &action, nullptr);
        }
    }
}

void StopListening()
{
    for (std::size_t i = 0; i < std::size(SIGNALS); ++i) {
        if (actionsBefore[i].sa_handler == SIG_DFL) {
            sigaction(SIGNALS[i], &actionsBefore[i], nullptr);
        }
    }
}

int TakeSlot(const std::string& path)
{
    for (int number = 0; number < SLOTS; ++number) {
        Slot& slot = slots[number];
        if (slot.owner != getpid() && path.size() < sizeof(slot.path)) {
            slot.owner = 0;
            std::memcpy(slot.path, path.c_str(), path.size() + 1);
            slot.owner = getpid();
            if (usedSlots++ == 0) {
                ListenToSignals();
            }
            return number;
        }
    }
    return -1;
}

void GiveBackSlot(int number)
{
    if (number >= 0 && slots[number].owner == getpid()) {
        slots[number].owner = 0;
        if (--usedSlots == 0) {
            StopListening();
        }
    }
}

std::string TemporaryRoot()
{
    const char* given = std::getenv("TMPDIR");
    std::error_code error;
    const fs::path root = fs::canonical(given == nullptr || *given == '\0' ? "/tmp" : given, error);
    return error ? "" : root.string();
}

bool HoldsZip(const std::string& name)
{
    return strcasestr(name.c_str(), "zip") != nullptr;
}

} // namespace

std::optional<Failure> Scratch::Make()
{
    return IsMade() ? std::nullopt : MakeIn(TemporaryRoot());
}

std::optional<Failure> Scratch::MakeIn(const std::string& root)
{
    for (;;) {
        std::string path = root + "/arborist-XXXXXX";
        if (root.empty() || mkdtemp(path.data()) == nullptr) {
            return Failure{"no_scratch", "no folder for temporary files can be made in "
                + (root.empty() ? "TMPDIR" : root) + ": " + std::strerror(errno), ExitStatus::INTERNAL};
        }
        // The library takes every file for an archive that has these letters anywhere in its path.
        if (!HoldsZip(path.substr(root.size()))) {
            mSlot = TakeSlot(path);
            mPath = path;
            return std::nullopt;
        }
        rmdir(path.c_str());
    }
}

Scratch::~Scratch()
{
    if (IsMade()) {
        RemoveTree(mPath.c_str());
        GiveBackSlot(mSlot);
    }
}

} // namespace command
