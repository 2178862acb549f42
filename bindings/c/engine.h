#ifndef ARBORIST_BINDINGS_C_ENGINE_H
#define ARBORIST_BINDINGS_C_ENGINE_H

#include <memory>
#include <mutex>

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

/// The turn of one call: waits for the one that runs, then sends the library's log to `engine` until its end.
class Turn {
public:
    /// Takes no turn on a thread that is in a callback: the turn would wait for the call that waits for the callback.
    explicit Turn(const arborist_engine& engine);
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool IsTaken() const { return mLock.owns_lock(); }

private:
    std::unique_lock<std::mutex> mLock;
};

/// The options of a detection that an engine decides, as it is set now: what the host sets later reaches the next one.
DetectionOptions OptionsOf(arborist_engine& engine);

} // namespace diagnosis::bindings

#endif
