#ifndef ARBORIST_TOOLS_BATCH_WORKER_H
#define ARBORIST_TOOLS_BATCH_WORKER_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "diagnosis/process/signals.h"
#include "tools/arborist/batch/batch.h"

namespace diagnosis::command {

/// What every worker of a batch is given at its start.
struct WorkerSetup {
    const std::vector<BundlePath>& bundles;
    const BatchWork& work;
    /// What the batch keeps from the process while it works; its workers get it.
    const SignalsHeldBack& signals;
};

/// What is one worker's own.
struct WorkerPlace {
    /// For its temporary files; made and removed with the process.
    std::string folder;
    /// Where it runs; any place unless given.
    std::optional<int> processor;
};

/// One worker process, seen from the batch. It takes one bundle after the other over a socket.
class Worker {
public:
    using Clock = std::chrono::steady_clock;
    enum class State { IDLE, BUSY, ANSWERED, DEAD };

    /// `programGroup`, in memory that both share, has the process group of a program that the worker runs, or 0.
    Worker(const WorkerSetup& setup, WorkerPlace place, std::atomic<pid_t>& programGroup);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Starts the process; false when it can't be, with errno. `others` are the sockets of the other workers.
    bool Start(const std::vector<int>& others);
    /// Hands over a bundle by its number; false when the process is gone.
    bool Send(std::uint32_t bundle, Clock::time_point deadline);
    /// Takes what the worker has written, after the socket became readable.
    State Receive();
    /// The answer, once: the worker is idle again.
    BundleAnswer TakeAnswer();
    /// Ends the process with all that it started and left behind. Answers how it had ended, where it did by itself.
    std::string End();

    State GetState() const { return mState; }
    int GetSocket() const { return mSocket; }
    std::uint32_t GetBundle() const { return mBundle; }
    Clock::time_point GetDeadline() const { return mDeadline; }

private:
    [[noreturn]] void Serve(int socket, const std::vector<int>& others) const;

    const WorkerSetup& mSetup;
    WorkerPlace mPlace;
    std::atomic<pid_t>& mProgramGroup;
    pid_t mProcess = -1;
    int mSocket = -1;
    State mState = State::DEAD;
    std::uint32_t mBundle = 0;
    Clock::time_point mDeadline;
    std::string mReceived;
};

} // namespace diagnosis::command

#endif
