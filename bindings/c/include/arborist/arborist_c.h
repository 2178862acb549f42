#ifndef ARBORIST_ARBORIST_C_H
#define ARBORIST_ARBORIST_C_H

/** @file
 * The C interface of arborist, for hosts in other languages: requests and answers are JSON, those of the command.
 *
 * Every call takes a request, one JSON object in UTF-8, and gives either a result or an error. docs/c-interface.md has
 * the keys of the requests and a complete host.
 *
 * Ownership. Whatever a call stores through a pointer to a handle belongs to the caller, who frees it with the function
 * of its type; freeing NULL does nothing. Texts of a handle belong to the handle and are valid until it is freed. A
 * request, and what is passed to a callback, is not kept beyond the call.
 *
 * Threads. While a call runs, the working directory, the time zone and the handlers of the signals that end a process
 * are those of the diagnosis, for the whole process; the end of the call restores them. Therefore one call runs at a
 * time: a call from another thread, of this engine or another, waits for it. A call out of a callback, on whatever
 * thread that runs, gives the error "busy" at once. Handles may be used by any thread, each by one at a time;
 * arborist_engine_stop alone may be called at any moment. A thread that makes calls needs a stack of 1 MiB.
 *
 * No C++ exception leaves a call, and no call ends the process. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Marks what the library exports. */
#if defined(_WIN32) && defined(ARBORIST_C_EXPORTS)
#define ARBORIST_C_API __declspec(dllexport)
#elif defined(__GNUC__)
#define ARBORIST_C_API __attribute__((visibility("default")))
#else
#define ARBORIST_C_API
#endif

/** Grows by one with every addition to this header. What breaks a host changes the name of the library instead. */
#define ARBORIST_ABI_VERSION 1

/** The ARBORIST_ABI_VERSION that the loaded library was built with: at least that of the host, or it is too old. */
ARBORIST_C_API uint32_t arborist_abi_version(void);

/** The version of the library, "0.1.0". Valid for ever. */
ARBORIST_C_API const char* arborist_library_version(void);

/** How a call ended: 0, or the kind of its error, with the numbers of the command's exit statuses. */
typedef enum arborist_status {
    ARBORIST_OK = 0,        /**< done, fault or not */
    ARBORIST_WRONG_USE = 2, /**< the request is wrong, or the call came out of a callback */
    ARBORIST_RULE_SET = 3,  /**< a rule set could not be used */
    ARBORIST_INPUT = 4,     /**< other input could not be used: a bundle, repair records */
    ARBORIST_INTERNAL = 5   /**< an internal error or a limit */
} arborist_status;

/** Who makes calls: callbacks, and what is known of rule sets from earlier calls. Costs next to nothing. */
typedef struct arborist_engine arborist_engine;
/** The answer of a call. */
typedef struct arborist_result arborist_result;
/** Why a call has no answer. */
typedef struct arborist_error arborist_error;

/** Stores a new engine, or NULL and an error. `error` may be NULL in this and all other calls. */
ARBORIST_C_API arborist_status arborist_engine_new(arborist_engine** engine, arborist_error** error);
/** Not while a call of this engine runs. Results and errors outlive it. */
ARBORIST_C_API void arborist_engine_free(arborist_engine* engine);

/** The levels of the log, from the least serious to the most. */
typedef enum arborist_log_level {
    ARBORIST_LOG_TRACE = 0, /**< never used by the library */
    ARBORIST_LOG_DEBUG = 1, /**< a step of the diagnosis */
    ARBORIST_LOG_INFO = 2,  /**< a step that succeeded */
    ARBORIST_LOG_WARN = 3,  /**< something is missing, and the diagnosis goes on without it */
    ARBORIST_LOG_ERROR = 4, /**< something failed */
    ARBORIST_LOG_FATAL = 5  /**< never used by the library */
} arborist_log_level;

/** Takes one message of the log: UTF-8 without a line end, `length` bytes and a NUL behind them. Runs on the thread of
 * the call, or on one that the library has started and waits for: never two at once. It returns normally. */
typedef void (*arborist_log_function)(void* user, arborist_log_level level, const char* message, size_t length);

/** From the next call on, messages of `least` and above go to `function`; NULL for none, as in a new engine. `user` is
 * handed through and must be valid as long as calls are made. While a call of this engine runs, only in a callback: the
 * call goes on as it began. */
ARBORIST_C_API void arborist_engine_on_log(
    arborist_engine* engine, arborist_log_level least, arborist_log_function function, void* user);

/** The answer to a code rule. Any other number is no answer either. */
typedef enum arborist_code_answer {
    ARBORIST_NOT_PRESENT = 0, /**< the fault is not there */
    ARBORIST_PRESENT = 1, /**< the fault is there */
    ARBORIST_NO_ANSWER = 2 /**< counts as not present, with a warning of the result */
} arborist_code_answer;

/** Decides a code rule, a test that only the host can carry out. `question` is the JSON object that the command hands
 * to the program of --code-runner: "faultDescriptionIds", "suggestionIds", "repairIds", "userDefinedInfo"; `length`
 * bytes and a NUL behind them. Runs on the thread of the call, which waits for it, and returns normally. */
typedef arborist_code_answer (*arborist_code_rule_function)(void* user, const char* question, size_t length);

/** From the next call on, code rules without a recorded answer are decided by `function`; NULL for nobody. `user` and
 * the moment as for the log. */
ARBORIST_C_API void arborist_engine_on_code_rule(
    arborist_engine* engine, arborist_code_rule_function function, void* user);

/** Asks the call of this engine that runs to end early. A detection still gives a result, in which what was not decided
 * is open with the reason "stopped", also if it is asked before the detection itself has begun. Only a call that still
 * waits for its turn or unpacks a zip has nothing to tell, and gives the error "timeout"; what is no detection is then
 * done to its end. Any thread, also in a callback, but no signal handler. Without a call of this engine it does nothing: a
 * call that starts later is not stopped. */
ARBORIST_C_API void arborist_engine_stop(arborist_engine* engine);

/** @name Calls
 * Each stores a result and returns ARBORIST_OK, or stores NULL, and an error, and returns its status. */
/** @{ */
/** One detection of a bundle, as `arborist detect --json`. */
ARBORIST_C_API arborist_status arborist_detect(arborist_engine* engine, const char* request, size_t length,
    arborist_result** result, arborist_error** error);
/** One detection of a bundle and why it ended so, as `arborist explain --json`. */
ARBORIST_C_API arborist_status arborist_explain(arborist_engine* engine, const char* request, size_t length,
    arborist_result** result, arborist_error** error);
/** What a rule set has about one detection code, as `arborist query --json`. */
ARBORIST_C_API arborist_status arborist_query(arborist_engine* engine, const char* request, size_t length,
    arborist_result** result, arborist_error** error);
/** Records that a repair was carried out, as `arborist repair record --json`. The only call that writes. */
ARBORIST_C_API arborist_status arborist_repair_record(arborist_engine* engine, const char* request, size_t length,
    arborist_result** result, arborist_error** error);
/** The records of repairs, as `arborist repair list --json`. */
ARBORIST_C_API arborist_status arborist_repair_list(arborist_engine* engine, const char* request, size_t length,
    arborist_result** result, arborist_error** error);
/** What a rule set has, as `arborist rules list --json`. */
ARBORIST_C_API arborist_status arborist_rule_set(arborist_engine* engine, const char* request, size_t length,
    arborist_result** result, arborist_error** error);
/** @} */

/** The answer: byte for byte what the command prints on standard output, one JSON object a line, line ends included; only
 * the "seconds" that a detection took are its own. A NUL follows its `length` bytes. `length` may be NULL. */
ARBORIST_C_API const char* arborist_result_json(const arborist_result* result, size_t* length);
/** The warnings of the call as a JSON array of objects with "code", "message" and what else is known; also those that
 * the command prints on standard error alone. */
ARBORIST_C_API const char* arborist_result_warnings(const arborist_result* result, size_t* length);
/** Frees the result and its texts. */
ARBORIST_C_API void arborist_result_free(arborist_result* result);

/** The status of the call that failed. */
ARBORIST_C_API arborist_status arborist_error_status(const arborist_error* error);
/** One of the error codes of docs/command.md, or "bad_request" or "busy". */
ARBORIST_C_API const char* arborist_error_code(const arborist_error* error);
/** 1 if the reason lies in the machine and may be gone at another try, as `error.retry` of the command's JSON; otherwise 0. */
ARBORIST_C_API int arborist_error_retry(const arborist_error* error);
/** One line for people, UTF-8, of some 4,000 bytes at most. Control characters are shown as "\xNN". */
ARBORIST_C_API const char* arborist_error_message(const arborist_error* error);
/** What the command prints on standard output for this failure, as above: empty if it prints nothing. */
ARBORIST_C_API const char* arborist_error_json(const arborist_error* error, size_t* length);
/** Frees the error and its texts. */
ARBORIST_C_API void arborist_error_free(arborist_error* error);

#ifdef __cplusplus
}
#endif

#endif
