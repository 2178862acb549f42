#include "arborist/arborist_c.h"

#include <memory>
#include <new>
#include <string_view>

#include "bindings/c/calls.h"

// The boundary: what is behind it may throw, nothing leaves it.

namespace {

using diagnosis::Failure;
using diagnosis::FailureCode;
using diagnosis::bindings::Answer;
using diagnosis::bindings::Call;
using diagnosis::bindings::Request;
using diagnosis::bindings::Turn;

/// Handed out where there is no memory for an error; never freed.
arborist_error* NoMemory()
{
    static arborist_error error{{FailureCode::OUT_OF_MEMORY, "memory ran out"}, ""};
    return &error;
}

arborist_status StatusOf(const Failure& failure)
{
    return static_cast<arborist_status>(failure.status);
}

arborist_status Store(Answer answer, arborist_result** result, arborist_error** error)
{
    using diagnosis::bindings::WarningsJson;
    if (!answer.failure) {
        *result = new arborist_result{std::move(answer.output), WarningsJson(answer.warnings)};
        return ARBORIST_OK;
    }
    const arborist_status status = StatusOf(*answer.failure);
    if (error != nullptr) {
        answer.failure->message = diagnosis::bindings::OneLine(answer.failure->message);
        *error = new arborist_error{std::move(*answer.failure), std::move(answer.output)};
    }
    return status;
}

// The current exception as a failure; no memory is left where even that fails.
arborist_status StoreExceptionInFlight(arborist_result** result, arborist_error** error) noexcept
{
    try {
        return Store({diagnosis::FailureInFlight(), "", {}}, result, error);
    } catch (...) {
        if (error != nullptr) {
            *error = NoMemory();
        }
        return ARBORIST_INTERNAL;
    }
}

Answer Refused(FailureCode code, const char* message)
{
    return {Failure{code, message}, "", {}};
}

Answer AnswerOf(Call call, arborist_engine* engine, const char* text, std::size_t length)
{
    if (engine == nullptr || (text == nullptr && length > 0)) {
        return Refused(FailureCode::BAD_REQUEST, "no engine or no request");
    }
    if (diagnosis::bindings::IsInCallback()) {
        return Refused(FailureCode::BUSY, "the call comes out of a callback of a call that runs");
    }
    const diagnosis::StopSwitch::Call stoppable(&engine->stop);
    const Turn turn(engine->stop);
    if (!turn.IsTaken()) {
        return Refused(FailureCode::TIMEOUT, "the call was stopped before its turn");
    }
    diagnosis::bindings::SendLogTo(*engine);
    Request request(std::string_view(text == nullptr ? "" : text, length));
    return call(*engine, request);
}

arborist_status Run(Call call, arborist_engine* engine, const char* text, std::size_t length, arborist_result** result,
    arborist_error** error) noexcept
{
    if (error != nullptr) {
        *error = nullptr;
    }
    arborist_result* unwanted = nullptr;
    arborist_result** const target = result == nullptr ? &unwanted : result;
    *target = nullptr;
    try {
        const arborist_status status = Store(AnswerOf(call, engine, text, length), target, error);
        delete unwanted;
        return status;
    } catch (...) {
        return StoreExceptionInFlight(target, error);
    }
}

const char* TextOf(const std::string& text, std::size_t* length)
{
    if (length != nullptr) {
        *length = text.size();
    }
    return text.c_str();
}

} // namespace

uint32_t arborist_abi_version(void)
{
    return ARBORIST_ABI_VERSION;
}

const char* arborist_library_version(void)
{
    return ARBORIST_VERSION;
}

arborist_status arborist_engine_new(arborist_engine** engine, arborist_error** error)
{
    if (error != nullptr) {
        *error = nullptr;
    }
    *engine = nullptr;
    try {
        *engine = new arborist_engine;
        return ARBORIST_OK;
    } catch (...) {
        return StoreExceptionInFlight(nullptr, error);
    }
}

void arborist_engine_free(arborist_engine* engine)
{
    delete engine;
}

void arborist_engine_on_log(arborist_engine* engine, arborist_log_level least, arborist_log_function function, void* user)
{
    engine->least = least;
    engine->log = function;
    engine->logUser = user;
}

void arborist_engine_on_code_rule(arborist_engine* engine, arborist_code_rule_function function, void* user)
{
    engine->codeRule = function;
    engine->codeRuleUser = user;
}

void arborist_engine_stop(arborist_engine* engine)
{
    diagnosis::bindings::StopCall(*engine);
}

arborist_status arborist_detect(
    arborist_engine* engine, const char* request, size_t length, arborist_result** result, arborist_error** error)
{
    return Run(diagnosis::bindings::Detect, engine, request, length, result, error);
}

arborist_status arborist_explain(
    arborist_engine* engine, const char* request, size_t length, arborist_result** result, arborist_error** error)
{
    return Run(diagnosis::bindings::Explain, engine, request, length, result, error);
}

arborist_status arborist_query(
    arborist_engine* engine, const char* request, size_t length, arborist_result** result, arborist_error** error)
{
    return Run(diagnosis::bindings::Query, engine, request, length, result, error);
}

arborist_status arborist_repair_record(
    arborist_engine* engine, const char* request, size_t length, arborist_result** result, arborist_error** error)
{
    return Run(diagnosis::bindings::RepairRecord, engine, request, length, result, error);
}

arborist_status arborist_repair_list(
    arborist_engine* engine, const char* request, size_t length, arborist_result** result, arborist_error** error)
{
    return Run(diagnosis::bindings::RepairList, engine, request, length, result, error);
}

arborist_status arborist_rule_set(
    arborist_engine* engine, const char* request, size_t length, arborist_result** result, arborist_error** error)
{
    return Run(diagnosis::bindings::RuleSet, engine, request, length, result, error);
}

const char* arborist_result_json(const arborist_result* result, size_t* length)
{
    return TextOf(result->output, length);
}

const char* arborist_result_warnings(const arborist_result* result, size_t* length)
{
    return TextOf(result->warnings, length);
}

void arborist_result_free(arborist_result* result)
{
    delete result;
}

arborist_status arborist_error_status(const arborist_error* error)
{
    return StatusOf(error->failure);
}

const char* arborist_error_code(const arborist_error* error)
{
    return diagnosis::CodeWord(error->failure.code);
}

int arborist_error_retry(const arborist_error* error)
{
    return diagnosis::IsWorthARetry(error->failure.code) ? 1 : 0;
}

const char* arborist_error_message(const arborist_error* error)
{
    return error->failure.message.c_str();
}

const char* arborist_error_json(const arborist_error* error, size_t* length)
{
    return TextOf(error->output, length);
}

void arborist_error_free(arborist_error* error)
{
    if (error != NoMemory()) {
        delete error;
    }
}
