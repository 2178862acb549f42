#include "tools/arborist/batch/batch.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <deque>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <unordered_map>

#include "diagnosis/process/shared_memory.h"
#include "diagnosis/process/signals.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/text/in_seconds.h"
#include "tools/arborist/batch/processors.h"
#include "tools/arborist/batch/progress.h"
#include "tools/arborist/batch/worker.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

using Clock = Worker::Clock;

volatile std::sig_atomic_t caughtSignal = 0;

/// Records the signals that end a batch instead of letting them end it at once. They are delivered only while the batch
/// waits, except for SIGPIPE, which its own writing raises.
class EndingSignals {
public:
    EndingSignals()
    {
        caughtSignal = 0;
        for (const int number : ENDING_SIGNALS) {
            if (CurrentHandler(number) != SIG_IGN) { // keeps an ignored signal ignored, as under nohup
                mActions.Handle(number, [](int caught) { caughtSignal = caught; });
            }
        }
    }

    const SignalsHeldBack& HeldBack() const { return mHeldBack; }

private:
    SignalsHeldBack mHeldBack{SIGNALS_FROM_OUTSIDE};
    SignalActions mActions;
};

/// The process groups of the programs that the workers run, in memory shared by all processes.
class ProgramGroups {
public:
    explicit ProgramGroups(std::size_t count) : mSize(count * sizeof(std::atomic<pid_t>))
    {
        mGroups = new (TakeSharedMemory(mSize)) std::atomic<pid_t>[count]();
    }
    ~ProgramGroups() { GiveSharedMemoryBack(mGroups, mSize); }
    ProgramGroups(const ProgramGroups&) = delete;
    ProgramGroups& operator=(const ProgramGroups&) = delete;

    std::atomic<pid_t>& operator[](std::size_t number) { return mGroups[number]; }

private:
    static_assert(std::atomic<pid_t>::is_always_lock_free);
    std::atomic<pid_t>* mGroups = nullptr;
    std::size_t mSize;
};

// Assigns a processor to each worker if there are at least as many workers as processors. A worker waits for the two
// threads that read a rule set, one after the other. Without the assignment the system often wakes such a thread on the
// processor of another worker, where it waits while its own processor is idle. As bundles are handed out one at a time,
// a processor that is busy with something else just gets fewer. With spare processors the system places threads better
// itself.
std::vector<std::optional<int>> ProcessorsOf(std::size_t workers)
{
    const std::vector<int> allowed = AllowedProcessors();
    std::vector<std::optional<int>> processors(workers);
    for (std::size_t i = 0; !allowed.empty() && workers >= allowed.size() && i < workers; ++i) {
        processors[i] = allowed[i % allowed.size()];
    }
    return processors;
}

class Batch {
public:
    Batch(const std::vector<BundlePath>& bundles, const BatchWork& work, const BatchOptions& options,
        const SignalsHeldBack& signals, const std::string& folder, BatchSummary& summary)
        : mBundles(bundles), mWork(work), mOptions(options), mSummary(summary), mSetup{bundles, work, signals},
          mIsKept(bundles.size()),
          mGroups(std::max<std::size_t>(1, std::min(options.jobs, bundles.size()))), mProgress(bundles.size())
    {
        const auto processors = ProcessorsOf(std::min(options.jobs, bundles.size()));
        for (std::size_t i = 0; i < processors.size(); ++i) {
            const WorkerPlace place{folder + "/" + std::to_string(i), processors[i]};
            mWorkers.push_back(std::make_unique<Worker>(mSetup, place, mGroups[i]));
        }
    }

    ExitStatus Run()
    {
        while (IsUnfinished() && caughtSignal == 0 && mCanPrint && mCanKeep) {
            HandOut();
            mProgress.Show([this] { PrintKept(); });
            if (IsUnfinished() && mCanKeep) {
                Wait();
            }
        }
        Conclude();
        FillIn();
        return mStatus;
    }

private:
    void FillIn()
    {
        mSummary.listed = mBundles.size();
        mSummary.done = mProgress.GetCounts().done;
        mSummary.seconds = std::chrono::duration<double>(Clock::now() - mStart).count();
        mSummary.isComplete = !IsUnfinished() && mCanPrint;
    }

    // Limits the lines that wait for an earlier one, as they take memory: beyond it a slow bundle delays the others.
    static constexpr std::size_t LARGEST_LEAD = 4096;

    bool IsUnfinished() const { return mProgress.GetCounts().done < mBundles.size(); }

    void HandOut()
    {
        for (const auto& worker : mWorkers) {
            if (worker->GetState() == Worker::State::IDLE || worker->GetState() == Worker::State::DEAD) {
                const auto number = NextBundle();
                if (!number) {
                    return;
                }
                HandOutTo(*worker, *number);
            }
        }
    }

    // The bundle to run next; none while earlier answers are being taken, and if all are handed out or held up.
    std::optional<std::uint32_t> NextBundle()
    {
        KeepAnswers();
        if (HasMoreToKeep() || !mCanKeep) {
            return std::nullopt;
        }
        if (mNext < mBundles.size() && !IsHeldUp()) {
            return static_cast<std::uint32_t>(mNext);
        }
        return mAgain.empty() ? std::nullopt : std::optional(mAgain.front());
    }

    void TookOver(std::uint32_t number)
    {
        if (number != mNext) {
            mAgain.pop_front();
            return;
        }
        ++mNext;
        SkipKept();
    }

    void SkipKept()
    {
        while (mNext < mAsked && mIsKept[mNext]) {
            ++mNext;
        }
    }

    bool IsHeldUp() const { return mOptions.isOrdered && mNext - mPrinted >= LARGEST_LEAD; }

    // With an order the answers are taken one by one when it is their turn, as they wait in memory otherwise.
    bool HasMoreToKeep() const
    {
        const std::size_t end = mOptions.isOrdered ? std::min(mNext + 1, mBundles.size()) : mBundles.size();
        return mWork.keep && mCanKeep && mAsked < end && !IsHeldUp();
    }

    // Takes some of the answers of an earlier run: in between, signals come through.
    void KeepAnswers()
    {
        static constexpr std::size_t MOST_AT_ONCE = 1000;
        for (std::size_t taken = 0; HasMoreToKeep() && taken < MOST_AT_ONCE; ++taken) {
            const std::size_t bundle = mAsked++;
            std::optional<BundleAnswer> answer;
            if (!mWork.keep(bundle, answer)) {
                mCanKeep = false;
                mStatus = MoreSerious(mStatus, ExitStatus::INTERNAL);
                return;
            }
            mIsKept[bundle] = answer.has_value();
            if (answer) {
                ++mSummary.kept;
                Finish(bundle, std::move(*answer));
            }
            SkipKept();
        }
    }

    void HandOutTo(Worker& worker, std::uint32_t number)
    {
        const auto deadline =
            mOptions.timeout.count() > 0 ? Clock::now() + mOptions.timeout : Clock::time_point::max();
        if (worker.GetState() == Worker::State::IDLE && worker.Send(number, deadline)) {
            TookOver(number);
            return;
        }
        worker.End(); // no process yet, or one that died while idle and so cost no bundle
        if (worker.Start(Sockets()) && worker.Send(number, deadline)) {
            TookOver(number);
            return;
        }
        const std::string reason = std::strerror(errno);
        worker.End();
        // If others are busy, try again when one of them ends and frees resources.
        if (std::none_of(mWorkers.begin(), mWorkers.end(), IsBusy)) {
            TookOver(number);
            Fail(number, {FailureCode::INTERNAL, "a worker process can't be started: " + reason}, 0);
        }
    }

    static bool IsBusy(const std::unique_ptr<Worker>& worker) { return worker->GetState() == Worker::State::BUSY; }

    std::vector<int> Sockets() const
    {
        std::vector<int> sockets;
        for (const auto& worker : mWorkers) {
            if (worker->GetSocket() >= 0) {
                sockets.push_back(worker->GetSocket());
            }
        }
        return sockets;
    }

    void Wait()
    {
        auto end = std::min(Clock::now() + std::chrono::hours(1), mProgress.DueAgain());
        for (const auto& worker : mWorkers) {
            end = IsBusy(worker) ? std::min(end, worker->GetDeadline()) : end;
        }
        // Where nobody is busy, a worker could not be started: the next bundle's turn has come.
        const bool goesOn = std::none_of(mWorkers.begin(), mWorkers.end(), IsBusy)
            || (HasMoreToKeep() && !std::all_of(mWorkers.begin(), mWorkers.end(), IsBusy));
        end = goesOn ? Clock::now() : end;
        const auto left = std::max(Clock::duration::zero(), end - Clock::now());
        const std::vector<bool> answers = WaitForAnswers(mWorkers, left, mSetup.signals);
        for (std::size_t i = 0; i < mWorkers.size(); ++i) {
            if (answers[i]) {
                Receive(*mWorkers[i]);
            } else if (IsBusy(mWorkers[i]) && Clock::now() >= mWorkers[i]->GetDeadline()) {
                mWorkers[i]->End();
                Fail(mWorkers[i]->GetBundle(), {FailureCode::TIMEOUT, "took longer than " + InSeconds(mOptions.timeout)
                    + " and was given up"}, mWorkers[i]->GetSeconds());
            }
        }
    }

    void Receive(Worker& worker)
    {
        switch (worker.Receive()) {
        case Worker::State::ANSWERED:
            FinishOrRunAgain(worker.GetBundle(), worker.TakeAnswer());
            break;
        case Worker::State::DEAD:
            Fail(worker.GetBundle(), {FailureCode::CRASHED, "the worker process " + worker.End()},
                worker.GetSeconds());
            break;
        default:
            break;
        }
    }

    void Fail(std::size_t bundle, const Failure& failure, double seconds)
    {
        FinishOrRunAgain(bundle, mWork.fail(mBundles[bundle], failure, seconds));
    }

    // Of a bundle that is run again no line is printed.
    void FinishOrRunAgain(std::size_t bundle, BundleAnswer answer)
    {
        if (answer.isWorthARetry && mTries[bundle] < mOptions.retries) {
            ++mTries[bundle];
            mAgain.push_back(static_cast<std::uint32_t>(bundle));
            return;
        }
        Finish(bundle, std::move(answer));
    }

    void Count(const BundleAnswer& answer)
    {
        if (!mOptions.forgivesBundles || !IsFailure(answer.status)) {
            mStatus = MoreSerious(mStatus, answer.status);
        }
        mProgress.Count(answer.outcome, IsFailure(answer.status));
        if (!answer.code.empty()) {
            ++mSummary.failed[answer.code];
        }
        for (std::size_t verdict = 0; verdict < VERDICTS.size(); ++verdict) {
            mSummary.trees[verdict] += answer.verdicts[verdict];
        }
    }

    void Finish(std::size_t bundle, BundleAnswer answer)
    {
        Count(answer);
        if (!mOptions.isOrdered) {
            Print(answer.line);
            return;
        }
        mWaiting[bundle] = std::move(answer.line);
        for (auto first = mWaiting.begin(); first != mWaiting.end() && first->first == mPrinted; ++mPrinted) {
            Print(first->second);
            first = mWaiting.erase(first);
        }
    }

    // Prints no summary if the reader of the results has left. If the reader of messages has left, too, its SIGPIPE
    // must not end the batch.
    void Conclude()
    {
        const std::sig_atomic_t signal = caughtSignal;
        if (mCanPrint && signal != CLOSED_PIPE) {
            mProgress.Finish([this] { PrintKept(); });
            caughtSignal = signal;
        }
    }

    void Print(const std::string& line)
    {
        mKept += line + "\n";
        if (!mProgress.KeepsResults()) {
            PrintKept();
        }
    }

    void PrintKept()
    {
        mCanPrint = (mKept.empty() || mWork.print(mKept)) && mCanPrint;
        mKept.clear();
    }

    const std::vector<BundlePath>& mBundles;
    const BatchWork& mWork;
    const BatchOptions& mOptions;
    BatchSummary& mSummary;
    WorkerSetup mSetup;
    std::vector<bool> mIsKept;
    ProgramGroups mGroups;
    Workers mWorkers;
    Progress mProgress;
    Clock::time_point mStart = Clock::now();
    std::size_t mNext = 0;
    std::size_t mAsked = 0; // how many of the bundles were looked up in the earlier run
    std::deque<std::uint32_t> mAgain;
    std::unordered_map<std::size_t, std::size_t> mTries;
    std::size_t mPrinted = 0;
    bool mCanPrint = true;
    bool mCanKeep = true;
    std::map<std::size_t, std::string> mWaiting;
    std::string mKept; // lines for a terminal that shows the progress, too
    ExitStatus mStatus = ExitStatus::SUCCESS;
};

} // namespace

BundleOutcome OutcomeOf(const VerdictCounts& verdicts)
{
    return verdicts[0] > 0 ? BundleOutcome::FAULT : verdicts[1] > 0 ? BundleOutcome::UNDECIDED : BundleOutcome::NO_FAULT;
}

std::size_t DefaultJobs()
{
    return HAS_WORKER_PROCESSES ? std::max(1U, std::thread::hardware_concurrency()) : 1;
}

std::optional<std::string> BatchProblem(const BatchOptions& options)
{
    if (!HAS_WORKER_PROCESSES && options.jobs > 1) {
        return "--jobs: must be 1 on Windows, where the bundles of a batch run one after the other";
    }
    if (!HAS_WORKER_PROCESSES && options.timeout.count() > 0) {
        return "--timeout: must be 0 on Windows, where no bundle can be given up; --time-limit ends a detection";
    }
    return std::nullopt;
}

ExitStatus RunBatch(const std::vector<BundlePath>& bundles, const BatchWork& work, const BatchOptions& options,
    BatchSummary* summary)
{
    BatchSummary unused;
    BatchSummary& filled = summary == nullptr ? unused : *summary;
    ExitStatus status = ExitStatus::SUCCESS;
    {
        const EndingSignals signals;
        Scratch folder; // shared by all workers, so that the files of a killed one are removed, too
        if (const auto failure = folder.Make()) {
            PrintError(failure->message);
            return failure->status;
        }
        status = Batch(bundles, work, options, signals.HeldBack(), folder.Path(), filled).Run();
        if (caughtSignal != 0 && work.interrupted) {
            filled.isComplete = false;
            work.interrupted(filled);
        }
    }
    if (caughtSignal != 0) {
        EndBySignal(caughtSignal); // ends by the signal, after cleaning up
    }
    return status;
}

} // namespace diagnosis::command
