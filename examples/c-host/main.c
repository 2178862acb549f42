/* A host in C: diagnoses a bundle, tells what the log warns of, answers the code rules, and prints the answer, which is JSON.
 *
 *     c_host BUNDLE */
#include <stdio.h>
#include <string.h>

#include <arborist/arborist_c.h>

static void on_log(void* user, arborist_log_level level, const char* message, size_t length)
{
    (void)user;
    (void)length;
    fprintf(stderr, "log %d: %s\n", (int)level, message);
}

/* A real host would run the test that "userDefinedInfo" of the question names, or ask its user. */
static arborist_code_answer on_code_rule(void* user, const char* question, size_t length)
{
    int* questions = user;
    (void)length;
    ++*questions;
    return strstr(question, "keyboard") != NULL ? ARBORIST_PRESENT : ARBORIST_NOT_PRESENT;
}

static int diagnose(arborist_engine* engine, const char* bundle)
{
    char request[4096];
    arborist_result* result = NULL;
    arborist_error* error = NULL;
    /* The example trusts that the path has neither quotes nor backslashes. */
    const int length = snprintf(request, sizeof request, "{\"bundle\": \"%s\"}", bundle);
    if (length < 0 || (size_t)length >= sizeof request) {
        return 2;
    }
    const arborist_status status = arborist_detect(engine, request, (size_t)length, &result, &error);
    if (status == ARBORIST_OK) {
        fputs(arborist_result_json(result, NULL), stdout);
    } else {
        fprintf(stderr, "%s: %s\n", arborist_error_code(error), arborist_error_message(error));
    }
    arborist_result_free(result);
    arborist_error_free(error);
    return (int)status;
}

int main(int argc, char** argv)
{
    arborist_engine* engine = NULL;
    int questions = 0;
    if (argc != 2 || arborist_abi_version() < ARBORIST_ABI_VERSION
        || arborist_engine_new(&engine, NULL) != ARBORIST_OK) {
        return 2;
    }
    arborist_engine_on_log(engine, ARBORIST_LOG_ERROR, on_log, NULL);
    arborist_engine_on_code_rule(engine, on_code_rule, &questions);
    const int status = diagnose(engine, argv[1]);
    printf("%d questions\n", questions);
    arborist_engine_free(engine);
    return status;
}
