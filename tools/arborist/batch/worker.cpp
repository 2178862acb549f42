#include "tools/arborist/batch/worker.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/prctl.h>
#endif

#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/detection/code_program.h"
#include "diagnosis/process/process_group.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/scratch/scratch.h"
#include "tools/arborist/batch/processors.h"
#include "tools/arborist/batch/worker_answer.h"

namespace diagnosis::command {

namespace fs = std::filesystem;

namespace {

bool ReadAll(int socket, void* target, std::size_t size)
{
    auto* at = static_cast<char*>(target);
    while (size > 0) {
        const ssize_t length = read(socket, at, size);
        if (length == 0 || (length < 0 && errno != EINTR)) {
            return false;
        }
        at += std::max<ssize_t>(length, 0);
        size -= static_cast<std::size_t>(std::max<ssize_t>(length, 0));
    }
    return true;
}

bool WriteAll(int socket, const std::string& bytes)
{
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t length = send(socket, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
        if (length < 0 && errno != EINTR) {
            return false;
        }
        written += static_cast<std::size_t>(std::max<ssize_t>(length, 0));
    }
    return true;
}

// Gives the forked process its own group, signals and temporary folder, and detaches it from the standard input and
// output of the batch.
void BecomeWorker(const WorkerPlace& place, const SignalsHeldBack& signals)
{
    setpgid(0, 0); // keys of the terminal signal the batch only, which then ends its workers
#if defined(__linux__)
    prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        signal(number, SIG_DFL);
    }
    signal(SIGPIPE, SIG_IGN); // so that writing to a closed standard error doesn't end the worker
    signal(SIGTTOU, SIG_IGN); // a background group may still write to the terminal
    signals.LetIn();
    KeepTemporaryFilesIn(place.folder);
    if (place.processor) {
        StayOn(*place.processor);
    }
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    close(nothing);
}

std::string EndOf(int status)
{
    return WIFSIGNALED(status) ? std::string("was killed by the signal ") + strsignal(WTERMSIG(status))
                               : "left with the exit status " + std::to_string(WEXITSTATUS(status));
}

} // namespace

Worker::Worker(const WorkerSetup& setup, WorkerPlace place, std::atomic<pid_t>& programGroup)
    : mSetup(setup), mPlace(std::move(place)), mProgramGroup(programGroup)
{
}

Worker::~Worker()
{
    End();
}

bool Worker::Start(const std::vector<int>& others)
{
    int sockets[2];
    std::error_code error;
    fs::create_directory(mPlace.folder, error);
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
        return false;
    }
    const pid_t batch = getpid();
    mProcess = fork();
    if (mProcess == 0) {
        close(sockets[0]);
        BecomeWorker(mPlace, mSetup.signals);
        if (getppid() != batch) {
            _exit(1); // the batch died before the signal could be set
        }
        Serve(sockets[1], others);
    }
    const int reason = errno;
    close(sockets[1]);
    if (mProcess < 0) {
        close(sockets[0]);
        errno = reason;
        return false;
    }
    fcntl(sockets[0], F_SETFL, O_NONBLOCK);
    mSocket = sockets[0];
    mState = State::IDLE;
    mReceived.clear();
    return true;
}

void Worker::Serve(int socket, const std::vector<int>& others) const
{
    for (const int other : others) {
        close(other); // otherwise the sockets would stay open after the batch has died
    }
    NoteProgramGroup(&mProgramGroup);
    const ReusedScratch reused(FoldersOfOverlay()); // the batch removes it with the worker's folder
    std::uint32_t bundle = 0;
    while (ReadAll(socket, &bundle, sizeof bundle)) {
        if (!WriteAll(socket, PackedAnswer(mSetup.work.run(mSetup.bundles[bundle])))) {
            break;
        }
    }
    std::fflush(nullptr);
    _exit(0);
}

bool Worker::Send(std::uint32_t bundle, Clock::time_point deadline)
{
    mBundle = bundle;
    mSent = Clock::now();
    mDeadline = deadline;
    if (send(mSocket, &bundle, sizeof bundle, MSG_NOSIGNAL) != sizeof bundle) {
        return false;
    }
    mState = State::BUSY;
    return true;
}

Worker::State Worker::Receive()
{
    char piece[65536];
    const ssize_t length = read(mSocket, piece, sizeof piece);
    if (length == 0 || (length < 0 && errno != EAGAIN && errno != EINTR)) {
        return mState = State::DEAD;
    }
    mReceived.append(piece, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return mState = IsWholeAnswer(mReceived) ? State::ANSWERED : mState;
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
    if (mProcess < 0) {
        return "";
    }
    int status = 0;
    // Distinguish a worker that ended by itself. Its socket closes a moment before the process can be waited for.
    const bool isOwnEnd = mState == State::DEAD;
    if (!isOwnEnd) {
        kill(mProcess, SIGKILL);
    }
    while (waitpid(mProcess, &status, 0) < 0 && errno == EINTR) {
    }
    if (const pid_t group = mProgramGroup.exchange(0); group > 0) {
        KillGroup(group);
    }
    close(mSocket);
    std::error_code ignored;
    fs::remove_all(mPlace.folder, ignored);
    mProcess = -1;
    mSocket = -1;
    mState = State::DEAD;
    return isOwnEnd ? EndOf(status) : "";
}

std::vector<bool> WaitForAnswers(const Workers& workers, Worker::Clock::duration time, const SignalsHeldBack& signals)
{
    std::vector<pollfd> sockets;
    for (const auto& worker : workers) {
        sockets.push_back({worker->GetState() == Worker::State::BUSY ? worker->GetSocket() : -1, POLLIN, 0});
    }
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec left = {};
    left.tv_sec = seconds.count();
    left.tv_nsec = std::chrono::duration_cast<std::chrono::nanoseconds>(time - seconds).count();
    const int ready = ppoll(sockets.data(), sockets.size(), &left, &signals.MaskBefore());
    std::vector<bool> answers;
    for (const pollfd& socket : sockets) {
        answers.push_back(ready > 0 && socket.revents != 0);
    }
    return answers;
}

} // namespace diagnosis::command
