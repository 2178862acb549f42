/* A bounded queue for the messages of one call. It is filled by the thread of the call, or by one that the library waits
 * for, and read when the call has returned: no two threads use it at once. */
#include <stdlib.h>
#include <string.h>

#include <arborist/arborist_c.h>

typedef struct {
    int level;
    size_t length;
    char* text;
} python_log_message;

typedef struct python_log {
    python_log_message* messages;
    size_t size;
    size_t most;
    size_t bytes;
    size_t most_bytes;
    size_t dropped;
} python_log;

static python_log* python_log_new(size_t most, size_t most_bytes)
{
    python_log* log = (python_log*)calloc(1, sizeof *log);
    if (log == NULL) {
        return NULL;
    }
    log->messages = (python_log_message*)calloc(most, sizeof *log->messages);
    log->most = log->messages == NULL ? 0 : most;
    log->most_bytes = most_bytes;
    return log;
}

static void python_log_free(python_log* log)
{
    size_t place;
    for (place = 0; log != NULL && place < log->size; ++place) {
        free(log->messages[place].text);
    }
    if (log != NULL) {
        free(log->messages);
    }
    free(log);
}

/* What finds no place is counted: the first messages tell more than the last. */
static void python_log_add(void* user, arborist_log_level level, const char* text, size_t length)
{
    python_log* log = (python_log*)user;
    char* copy = NULL;
    if (log->size < log->most && length <= log->most_bytes - log->bytes) {
        copy = (char*)malloc(length + 1);
    }
    if (copy == NULL) {
        ++log->dropped;
        return;
    }
    memcpy(copy, text, length + 1);
    log->bytes += length;
    log->messages[log->size].level = (int)level;
    log->messages[log->size].length = length;
    log->messages[log->size].text = copy;
    ++log->size;
}

static void python_log_attach(python_log* log, arborist_engine* engine, int least)
{
    arborist_engine_on_log(engine, (arborist_log_level)least, python_log_add, log);
}

static size_t python_log_size(const python_log* log)
{
    return log->size;
}

static size_t python_log_dropped(const python_log* log)
{
    return log->dropped;
}

static int python_log_level(const python_log* log, size_t place)
{
    return log->messages[place].level;
}

static const char* python_log_text(const python_log* log, size_t place, size_t* length)
{
    *length = log->messages[place].length;
    return log->messages[place].text;
}
