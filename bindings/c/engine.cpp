#include "bindings/c/engine.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>
#include <type_traits>

#include "bindings/c/answer.h"
#include "diagnosis/process/library_log.h"

namespace diagnosis::bindings {

namespace {

std::mutex oneCall;
/// The thread of the call that runs.
std::atomic<std::thread::id> caller;

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

/// Hands lines to the function of the engine whose call runs. Between calls the library logs nothing.
class HostSink : public LogSink {
public:
    explicit HostSink(const arborist_engine& engine) : mEngine(engine) {}

    bool IsWanted(unsigned int level) const override
    {
        return mEngine.log != nullptr && static_cast<int>(level) >= static_cast<int>(mEngine.least);
    }

    void OnLine(unsigned int level, const std::string& line) override
    {
        const std::string message = MessageOf(line);
        mEngine.log(mEngine.logUser, static_cast<arborist_log_level>(level), message.c_str(), message.size());
    }

private:
    const arborist_engine& mEngine;
};

} // namespace

Turn::Turn(const arborist_engine& engine)
{
    if (caller.load() != std::this_thread::get_id()) {
        mLock = std::unique_lock(oneCall);
        SendLibraryLogTo(std::make_unique<HostSink>(engine));
        caller = std::this_thread::get_id();
    }
}

Turn::~Turn()
{
    if (IsTaken()) {
        caller = std::thread::id();
    }
}

DetectionOptions OptionsOf(arborist_engine& engine)
{
    DetectionOptions options;
    options.ruleSets = engine.ruleSets;
    options.stop = &engine.stop;
    if (engine.codeRule != nullptr) {
        options.codeRunner.ask = [&engine](const std::string& question) -> std::optional<bool> {
            const auto answer = engine.codeRule(engine.codeRuleUser, question.c_str(), question.size());
            // A host in C may return any number; one beyond the enumeration is no value of it in C++.
            std::underlying_type_t<arborist_code_answer> number = ARBORIST_NO_ANSWER;
            std::memcpy(&number, &answer, sizeof(number));
            const bool isAnswer = number == ARBORIST_PRESENT || number == ARBORIST_NOT_PRESENT;
            return isAnswer ? std::optional(number == ARBORIST_PRESENT) : std::nullopt;
        };
    }
    return options;
}

} // namespace diagnosis::bindings
