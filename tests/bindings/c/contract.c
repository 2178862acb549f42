/* What the header promises apart from answers: versions, nulls, turns of threads, calls out of callbacks.
 *
 *     c_contract BUNDLE TWO     bundles with one and with two code rules that have no recorded answer */
#include <pthread.h>
#include <sched.h>
#include <stdatomic.h>
#include <stdio.h>
#include <string.h>

#include <arborist/arborist_c.h>

static int failures = 0;

#define CHECK(condition) \
    do { \
        if (!(condition)) { \
            fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            ++failures; \
        } \
    } while (0)

static char request[4096];

static void versions_are_those_of_the_header(void)
{
    CHECK(arborist_abi_version() == ARBORIST_ABI_VERSION);
    CHECK(strcmp(arborist_library_version(), EXPECTED_VERSION) == 0);
}

static void nulls_are_no_handles_and_are_freed(void)
{
    arborist_error* error = NULL;
    arborist_result* result = NULL;
    arborist_engine_free(NULL);
    arborist_result_free(NULL);
    arborist_error_free(NULL);
    CHECK(arborist_detect(NULL, "{}", 2, &result, &error) == ARBORIST_WRONG_USE);
    CHECK(result == NULL && error != NULL && strcmp(arborist_error_code(error), "bad_request") == 0);
    CHECK(arborist_error_status(error) == ARBORIST_WRONG_USE && arborist_error_retry(error) == 0);
    arborist_error_free(error);
    arborist_engine* engine = NULL;
    CHECK(arborist_engine_new(&engine, &error) == ARBORIST_OK && error == NULL);
    CHECK(arborist_detect(engine, NULL, 3, &result, &error) == ARBORIST_WRONG_USE);
    arborist_error_free(error);
    CHECK(arborist_detect(engine, NULL, 0, &result, &error) == ARBORIST_WRONG_USE);
    CHECK(strncmp(arborist_error_message(error), "the request: ", 13) == 0);
    arborist_error_free(error);
    CHECK(arborist_detect(engine, request, strlen(request), NULL, NULL) == ARBORIST_OK);
    CHECK(arborist_detect(engine, "{", 1, NULL, NULL) == ARBORIST_WRONG_USE);
    arborist_engine_stop(engine);
    arborist_engine_free(engine);
}

static arborist_code_answer call_again(void* user, const char* question, size_t length)
{
    arborist_error* error = NULL;
    arborist_result* result = NULL;
    (void)question;
    (void)length;
    CHECK(arborist_detect(user, request, strlen(request), &result, &error) == ARBORIST_WRONG_USE);
    CHECK(result == NULL && strcmp(arborist_error_code(error), "busy") == 0);
    arborist_error_free(error);
    return ARBORIST_PRESENT;
}

static void a_call_out_of_a_callback_is_refused(void)
{
    arborist_engine* engine = NULL;
    arborist_result* result = NULL;
    CHECK(arborist_engine_new(&engine, NULL) == ARBORIST_OK);
    arborist_engine_on_code_rule(engine, call_again, engine);
    CHECK(arborist_detect(engine, request, strlen(request), &result, NULL) == ARBORIST_OK);
    arborist_engine_free(engine);
    size_t length = 0;
    const char* json = arborist_result_json(result, &length);
    CHECK(json[length] == '\0' && strlen(json) == length && strstr(json, "\"isFault\": true") != NULL);
    CHECK(strcmp(arborist_result_warnings(result, NULL), "[]") == 0);
    arborist_result_free(result);
}

static int refused = 0;
static int messages = 0;

static void call_out_of_log(void* user, arborist_log_level level, const char* message, size_t length)
{
    arborist_error* error = NULL;
    (void)level;
    (void)message;
    (void)length;
    CHECK(arborist_detect(user, request, strlen(request), NULL, &error) == ARBORIST_WRONG_USE);
    refused += strcmp(arborist_error_code(error), "busy") == 0;
    ++messages;
    arborist_error_free(error);
}

/* Some messages come on a thread that reads the rule set, and for which the call waits. */
static void a_call_out_of_the_log_is_refused_on_whatever_thread(void)
{
    arborist_engine* engine = NULL;
    CHECK(arborist_engine_new(&engine, NULL) == ARBORIST_OK);
    arborist_engine_on_log(engine, ARBORIST_LOG_TRACE, call_out_of_log, engine);
    CHECK(arborist_detect(engine, request, strlen(request), NULL, NULL) == ARBORIST_OK);
    CHECK(messages > 3 && refused == messages);
    arborist_engine_on_log(engine, ARBORIST_LOG_TRACE, NULL, NULL);
    CHECK(arborist_detect(engine, request, strlen(request), NULL, NULL) == ARBORIST_OK);
    arborist_engine_free(engine);
}

struct leaver {
    arborist_engine* engine;
    int messages;
    int questions;
};

static void leave_log(void* user, arborist_log_level level, const char* message, size_t length)
{
    struct leaver* leaver = user;
    (void)level;
    (void)message;
    (void)length;
    ++leaver->messages;
    arborist_engine_on_log(leaver->engine, ARBORIST_LOG_TRACE, NULL, NULL);
}

static arborist_code_answer leave_code_rules(void* user, const char* question, size_t length)
{
    struct leaver* leaver = user;
    (void)question;
    (void)length;
    ++leaver->questions;
    arborist_engine_on_code_rule(leaver->engine, NULL, NULL);
    return ARBORIST_NOT_PRESENT;
}

static void callbacks_that_leave_stay_until_the_call_ends(const char* with_two)
{
    struct leaver leaver = {NULL, 0, 0};
    int before = 0;
    CHECK(arborist_engine_new(&leaver.engine, NULL) == ARBORIST_OK);
    arborist_engine_on_log(leaver.engine, ARBORIST_LOG_TRACE, leave_log, &leaver);
    arborist_engine_on_code_rule(leaver.engine, leave_code_rules, &leaver);
    CHECK(arborist_detect(leaver.engine, with_two, strlen(with_two), NULL, NULL) == ARBORIST_OK);
    CHECK(leaver.messages > 3 && leaver.questions == 2);
    before = leaver.messages;
    CHECK(arborist_detect(leaver.engine, with_two, strlen(with_two), NULL, NULL) == ARBORIST_OK);
    CHECK(leaver.messages == before && leaver.questions == 2);
    arborist_engine_free(leaver.engine);
}

static atomic_int running = 0;
static atomic_int most = 0;

static arborist_code_answer count_running(void* user, const char* question, size_t length)
{
    const int now = atomic_fetch_add(&running, 1) + 1;
    (void)user;
    (void)question;
    (void)length;
    if (now > most) {
        most = now;
    }
    atomic_fetch_sub(&running, 1);
    return ARBORIST_NOT_PRESENT;
}

static void* call_several_times(void* user)
{
    (void)user;
    arborist_engine* engine = NULL;
    CHECK(arborist_engine_new(&engine, NULL) == ARBORIST_OK);
    arborist_engine_on_code_rule(engine, count_running, NULL);
    for (int time = 0; time < 5; ++time) {
        CHECK(arborist_detect(engine, request, strlen(request), NULL, NULL) == ARBORIST_OK);
    }
    arborist_engine_free(engine);
    return NULL;
}

static void calls_of_threads_take_turns(void)
{
    pthread_t threads[4];
    for (int i = 0; i < 4; ++i) {
        CHECK(pthread_create(&threads[i], NULL, call_several_times, NULL) == 0);
    }
    for (int i = 0; i < 4; ++i) {
        pthread_join(threads[i], NULL);
    }
    CHECK(most == 1);
}

static atomic_int has_waited = 0;

static void* wait_for_the_turn(void* engine)
{
    arborist_error* error = NULL;
    CHECK(arborist_detect(engine, request, strlen(request), NULL, &error) == ARBORIST_INTERNAL);
    CHECK(error != NULL && strcmp(arborist_error_code(error), "timeout") == 0 && arborist_error_retry(error) == 1);
    arborist_error_free(error);
    has_waited = 1;
    return NULL;
}

/* The call that waits can't have its turn before this callback returns. */
static arborist_code_answer stop_the_call_that_waits(void* user, const char* question, size_t length)
{
    pthread_t thread;
    (void)question;
    (void)length;
    has_waited = 0;
    CHECK(pthread_create(&thread, NULL, wait_for_the_turn, user) == 0);
    while (!has_waited) {
        arborist_engine_stop(user);
    }
    pthread_join(thread, NULL);
    return ARBORIST_PRESENT;
}

static void a_stop_ends_a_call_that_waits_for_its_turn(void)
{
    arborist_engine* engine = NULL;
    arborist_engine* waiting = NULL;
    arborist_result* result = NULL;
    CHECK(arborist_engine_new(&engine, NULL) == ARBORIST_OK);
    CHECK(arborist_engine_new(&waiting, NULL) == ARBORIST_OK);
    arborist_engine_on_code_rule(engine, stop_the_call_that_waits, waiting);
    CHECK(arborist_detect(engine, request, strlen(request), &result, NULL) == ARBORIST_OK);
    CHECK(strcmp(arborist_result_warnings(result, NULL), "[]") == 0);
    arborist_result_free(result);
    CHECK(arborist_detect(waiting, request, strlen(request), &result, NULL) == ARBORIST_OK);
    CHECK(strstr(arborist_result_warnings(result, NULL), "stopped") == NULL);
    arborist_result_free(result);
    arborist_engine_free(engine);
    arborist_engine_free(waiting);
}

static atomic_int done = 0;

static void* stop_all_the_time(void* engine)
{
    while (!done) {
        arborist_engine_stop(engine);
        sched_yield(); /* a lock goes to whoever is quick */
    }
    return NULL;
}

static void a_stop_at_any_moment_does_no_harm(void)
{
    pthread_t thread;
    arborist_engine* engine = NULL;
    CHECK(arborist_engine_new(&engine, NULL) == ARBORIST_OK);
    CHECK(pthread_create(&thread, NULL, stop_all_the_time, engine) == 0);
    for (int time = 0; time < 5; ++time) {
        CHECK(arborist_detect(engine, request, strlen(request), NULL, NULL) == ARBORIST_OK);
    }
    done = 1;
    pthread_join(thread, NULL);
    arborist_engine_free(engine);
}

int main(int argc, char** argv)
{
    char with_two[4096];
    if (argc != 3) {
        return 100;
    }
    snprintf(with_two, sizeof with_two, "{\"bundle\": \"%s\"}", argv[2]);
    snprintf(request, sizeof request, "{\"bundle\": \"%s\"}", argv[1]);
    versions_are_those_of_the_header();
    nulls_are_no_handles_and_are_freed();
    a_call_out_of_a_callback_is_refused();
    a_call_out_of_the_log_is_refused_on_whatever_thread();
    callbacks_that_leave_stay_until_the_call_ends(with_two);
    calls_of_threads_take_turns();
    a_stop_ends_a_call_that_waits_for_its_turn();
    a_stop_at_any_moment_does_no_harm();
    return failures == 0 ? 0 : 1;
}
