#ifndef ARBORIST_BINDINGS_C_ENGINE_H
#define ARBORIST_BINDINGS_C_ENGINE_H

#include <memory>

#include "arborist/arborist_c.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/detection/stop_switch.h"

/// What a host has set for its calls.
struct arborist_engine {
    arborist_log_function log = nullptr;
    arborist_log_level least = ARBORIST_LOG_TRACE;
    void* logUser = nullptr;
    arborist_code_rule_function codeRule = nullptr;
    void* codeRuleUser = nullptr;
    diagnosis::StopSwitch stop;
    std::shared_ptr<diagnosis::RuleSetMemory> ruleSets = std::make_shared<diagnosis::RuleSetMemory>();
};

namespace diagnosis::bindings {

/// Whether this thread is in a callback: a call would wait for the one that waits for the callback.
bool IsInCallback();

/// Lets one call run at a time: the constructor waits until the running call has ended.
class Turn {
public:
    /// Takes no turn if `stop` is asked before.
    explicit Turn(const diagnosis::StopSwitch& stop);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool IsTaken() const { return mIsTaken; }

private:
    bool mIsTaken = false;
};

/// Stops the call of the engine that runs or waits for its turn.
void StopCall(arborist_engine& engine);

/// Sends the library's log to the function that the engine has now, until the next call.
void SendLogTo(const arborist_engine& engine);

/// The options of a detection that an engine decides, as it is set now: what the host sets later reaches the next one.
DetectionOptions OptionsOf(arborist_engine& engine);

} // namespace diagnosis::bindings

#endif
