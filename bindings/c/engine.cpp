#include "bindings/c/engine.h"

#include <atomic>
#include <cstring>
#include <type_traits>
#include <utility>

#include "bindings/c/answer.h"
#include "diagnosis/process/library_log.h"

namespace diagnosis::bindings {

namespace {

std::atomic<bool> isCallRunning = false;
/// Counts what those who wait for their turn may wait for: ends of calls, and stops.
std::atomic<int> events = 0;

void TellWaiting()
{
    ++events;
    events.notify_all();
}

/// True on the thread of the call, or on one that the library has started and waits for, while it is in a callback.
thread_local bool isInCallback = false;

class InCallback {
public:
    InCallback() : mBefore(std::exchange(isInCallback, true)) {}
    ~InCallback() { isInCallback = mBefore; }
    InCallback(const InCallback&) = delete;
    InCallback& operator=(const InCallback&) = delete;

private:
    bool mBefore;
};

// A line is "[[LEVEL] ]:", the message and a line end.
std::string MessageOf(const std::string& line)
{
    const std::size_t start = line.find("]:");
    std::string message = ValidUtf8(start == std::string::npos ? line : line.substr(start + 2));
    while (!message.empty() && message.back() == '\n') {
        message.pop_back();
    }
    return message;
}

/// Hands lines to the function that the engine has when its call begins. Between calls the library logs nothing.
class HostSink : public LogSink {
public:
    explicit HostSink(const arborist_engine& engine) : mLog(engine.log), mLeast(engine.least), mUser(engine.logUser) {}

    bool IsWanted(unsigned int level) const override
    {
        return mLog != nullptr && static_cast<int>(level) >= static_cast<int>(mLeast);
    }

    void OnLine(unsigned int level, const std::string& line) override
    {
        const std::string message = MessageOf(line);
        const InCallback inCallback;
        mLog(mUser, static_cast<arborist_log_level>(level), message.c_str(), message.size());
    }

private:
    arborist_log_function mLog;
    arborist_log_level mLeast;
    void* mUser;
};

std::optional<bool> AnswerOf(arborist_code_answer answer)
{
    // A host in C may return any number; one beyond the enumeration is no value of it in C++.
    std::underlying_type_t<arborist_code_answer> number = ARBORIST_NO_ANSWER;
    std::memcpy(&number, &answer, sizeof(number));
    const bool isAnswer = number == ARBORIST_PRESENT || number == ARBORIST_NOT_PRESENT;
    return isAnswer ? std::optional(number == ARBORIST_PRESENT) : std::nullopt;
}

} // namespace

bool IsInCallback()
{
    return isInCallback;
}

Turn::Turn(const StopSwitch& stop)
{
    for (;;) {
        const int seen = events; // first: what comes after it ends the wait
        mIsTaken = !isCallRunning.exchange(true);
        if (mIsTaken || stop.IsAsked()) {
            return;
        }
        events.wait(seen);
    }
}

Turn::~Turn()
{
    if (mIsTaken) {
        isCallRunning = false;
        TellWaiting();
    }
}

void StopCall(arborist_engine& engine)
{
    engine.stop.Stop();
    TellWaiting();
}

void SendLogTo(const arborist_engine& engine)
{
    SendLibraryLogTo(std::make_unique<HostSink>(engine));
}

DetectionOptions OptionsOf(arborist_engine& engine)
{
    DetectionOptions options;
    options.ruleSets = engine.ruleSets;
    options.stop = &engine.stop;
    if (engine.codeRule != nullptr) {
        options.codeRunner.ask = [ask = engine.codeRule, user = engine.codeRuleUser](const std::string& question) {
            const InCallback inCallback;
            return AnswerOf(ask(user, question.c_str(), question.size()));
        };
    }
    return options;
}

} // namespace diagnosis::bindings
