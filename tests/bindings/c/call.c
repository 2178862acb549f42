/* Makes calls through the C interface, for the tests: prints the answer on standard output, warnings, log and errors on
 * standard error, and exits with the status of the last call.
 *
 *     c_call OPERATION REQUEST [--log LEVEL] [--answer N] [--stop] [--times N]
 *
 * --answer N answers every code rule with N; --stop also stops the detection from within; --times N repeats the call
 * and prints the last answer and, behind it, how many kilobytes the process has grown since the first tenth of the
 * calls. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include <arborist/arborist_c.h>

typedef arborist_status (*call_function)(
    arborist_engine*, const char*, size_t, arborist_result**, arborist_error**);

struct operation {
    const char* name;
    call_function call;
};

static const struct operation OPERATIONS[] = {
    {"detect", arborist_detect},
    {"explain", arborist_explain},
    {"query", arborist_query},
    {"repair_record", arborist_repair_record},
    {"repair_list", arborist_repair_list},
    {"rule_set", arborist_rule_set},
};

struct host {
    arborist_engine* engine;
    int answer;
    int stops;
};

static void on_log(void* user, arborist_log_level level, const char* message, size_t length)
{
    if (strlen(message) != length) {
        abort();
    }
    fprintf(stderr, "%s%d: %s\n", (const char*)user, (int)level, message);
}

static arborist_code_answer on_code_rule(void* user, const char* question, size_t length)
{
    const struct host* host = user;
    if (strlen(question) != length) {
        abort();
    }
    fprintf(stderr, "asked %s", question);
    if (host->stops) {
        arborist_engine_stop(host->engine);
    }
    return (arborist_code_answer)host->answer;
}

static long resident_kilobytes(void)
{
    long pages = 0;
    FILE* file = fopen("/proc/self/statm", "r");
    if (file != NULL) {
        if (fscanf(file, "%*d %ld", &pages) != 1) {
            pages = 0;
        }
        fclose(file);
    }
    return pages * 4;
}

static arborist_status make_call(arborist_engine* engine, call_function call, const char* request, int prints)
{
    arborist_result* result = NULL;
    arborist_error* error = NULL;
    const arborist_status status = call(engine, request, strlen(request), &result, &error);
    if ((status == ARBORIST_OK) != (result != NULL) || (status == ARBORIST_OK) != (error == NULL)) {
        abort();
    }
    if (prints && result != NULL) {
        size_t length = 0;
        const char* text = arborist_result_json(result, &length);
        fwrite(text, 1, length, stdout);
        text = arborist_result_warnings(result, &length);
        fprintf(stderr, "warnings %.*s\n", (int)length, text);
    }
    if (prints && error != NULL) {
        size_t length = 0;
        const char* text = arborist_error_json(error, &length);
        fwrite(text, 1, length, stdout);
        fprintf(stderr, "error %s: %s\n", arborist_error_code(error), arborist_error_message(error));
    }
    arborist_result_free(result);
    arborist_error_free(error);
    return status;
}

static call_function find_operation(const char* name)
{
    for (size_t i = 0; i < sizeof OPERATIONS / sizeof *OPERATIONS; ++i) {
        if (strcmp(OPERATIONS[i].name, name) == 0) {
            return OPERATIONS[i].call;
        }
    }
    return NULL;
}

int main(int argc, char** argv)
{
    struct host host = {NULL, -1, 0};
    long times = 1;
    char mark[] = "log ";
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY); /* answers as they are, without carriage returns */
#endif
    if (argc < 3 || find_operation(argv[1]) == NULL || arborist_engine_new(&host.engine, NULL) != ARBORIST_OK) {
        return 100;
    }
    for (int i = 3; i < argc; ++i) {
        if (strcmp(argv[i], "--log") == 0) {
            arborist_engine_on_log(host.engine, (arborist_log_level)atoi(argv[++i]), on_log, mark);
        } else if (strcmp(argv[i], "--answer") == 0) {
            host.answer = atoi(argv[++i]);
            arborist_engine_on_code_rule(host.engine, on_code_rule, &host);
        } else if (strcmp(argv[i], "--stop") == 0) {
            host.stops = 1;
        } else if (strcmp(argv[i], "--times") == 0) {
            times = atol(argv[++i]);
        }
    }
    arborist_status status = ARBORIST_OK;
    long before = 0;
    for (long time = 1; time <= times; ++time) {
        status = make_call(host.engine, find_operation(argv[1]), argv[2], time == times);
        if (time == (times + 9) / 10) {
            before = resident_kilobytes();
        }
    }
    if (times > 1) {
        printf("grown by %ld\n", resident_kilobytes() - before);
    }
    arborist_engine_free(host.engine);
    return (int)status;
}
