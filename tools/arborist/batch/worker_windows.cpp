#include "tools/arborist/batch/worker.h"

#include "tools/arborist/batch/worker_answer.h"

namespace diagnosis::command {

Worker::Worker(const WorkerSetup& setup, WorkerPlace place, std::atomic<pid_t>& programGroup)
    : mSetup(setup), mPlace(std::move(place)), mProgramGroup(programGroup)
{
}

Worker::~Worker()
{
    End();
}

bool Worker::Start(const std::vector<int>&)
{
    mState = State::IDLE;
    return true;
}

bool Worker::Send(std::uint32_t bundle, Clock::time_point deadline)
{
    mBundle = bundle;
    mSent = Clock::now();
    mDeadline = deadline;
    mReceived = PackedAnswer(mSetup.work.run(mSetup.bundles[bundle]));
    mState = State::BUSY;
    return true;
}

Worker::State Worker::Receive()
{
    return mState = State::ANSWERED;
}

BundleAnswer Worker::TakeAnswer()
{
    BundleAnswer answer = UnpackedAnswer(mReceived);
    mReceived.clear();
    mState = State::IDLE;
    return answer;
}

std::string Worker::End()
{
    mState = State::DEAD;
    return "";
}

// A busy worker has its answer already.
std::vector<bool> WaitForAnswers(const Workers& workers, Worker::Clock::duration, const SignalsHeldBack&)
{
    std::vector<bool> answers;
    for (const auto& worker : workers) {
        answers.push_back(worker->GetState() == Worker::State::BUSY);
    }
    return answers;
}

} // namespace diagnosis::command
