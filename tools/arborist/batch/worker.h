#ifndef ARBORIST_TOOLS_BATCH_WORKER_H
#define ARBORIST_TOOLS_BATCH_WORKER_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "diagnosis/process/signals.h"
#include "tools/arborist/batch/batch.h"

namespace diagnosis::command {

/// The start parameters that all workers of a batch share.
struct WorkerSetup {
    const std::vector<BundlePath>& bundles;
    const BatchWork& work;
    /// The signals that the batch blocks; its workers unblock them.
    const SignalsHeldBack& signals;
};

/// The start parameters of a single worker.
struct WorkerPlace {
    /// Folder for its temporary files; created and removed with the process.
    std::string folder;
    /// Processor that it is bound to; any if not set.
    std::optional<int> processor;
};

/// The batch's side of one worker process, which receives one bundle after the other over a socket. On Windows it is no
/// process: Send runs the bundle.
class Worker {
public:
    using Clock = std::chrono::steady_clock;
    enum class State { IDLE, BUSY, ANSWERED, DEAD };

    /// `programGroup` is in memory that both processes share; it has the process group of the program that the worker
    /// runs, or 0.
    Worker(const WorkerSetup& setup, WorkerPlace place, std::atomic<pid_t>& programGroup);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Starts the process; false, with errno, if it can't. `others` are the sockets of the other workers.
    bool Start(const std::vector<int>& others);
    /// Sends a bundle by its number; false if the process has ended.
    bool Send(std::uint32_t bundle, Clock::time_point deadline);
    /// Reads from the worker once the socket has become readable.
    State Receive();
    /// Moves the answer out; the worker is idle again.
    BundleAnswer TakeAnswer();
    /// Ends the process with its program and removes its files. If it had ended by itself, returns how.
    std::string End();

    State GetState() const { return mState; }
    int GetSocket() const { return mSocket; }
    std::uint32_t GetBundle() const { return mBundle; }
    Clock::time_point GetDeadline() const { return mDeadline; }
    /// Since the bundle was sent.
    double GetSeconds() const { return std::chrono::duration<double>(Clock::now() - mSent).count(); }

private:
    [[noreturn]] void Serve(int socket, const std::vector<int>& others) const;

    const WorkerSetup& mSetup;
    WorkerPlace mPlace;
    std::atomic<pid_t>& mProgramGroup;
    pid_t mProcess = -1;
    int mSocket = -1;
    State mState = State::DEAD;
    std::uint32_t mBundle = 0;
    Clock::time_point mSent;
    Clock::time_point mDeadline;
    std::string mReceived;
};

using Workers = std::vector<std::unique_ptr<Worker>>;

/// Waits until a busy worker has sent something, for `time` at most, and lets in the signals that are held back. Tells of
/// each worker whether it has; Worker::Receive takes it.
std::vector<bool> WaitForAnswers(const Workers& workers, Worker::Clock::duration time, const SignalsHeldBack& signals);

} // namespace diagnosis::command

#endif
