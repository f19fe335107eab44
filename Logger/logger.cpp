// The log file. Opened at start-up, where it is also rotated by size; from then on every thread appends whole lines
// under one lock and flushes each. Owns the stream and the queue of the optional writer.

#include "Logger/logger.h"

#include "Logger/logRotation.h"

#include <pthread.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <utility>

GAsyncQueue *logMessageQueue = nullptr;
GThread *fileWriter = nullptr;

namespace
{

constexpr const char *logLevel[] = {"INFO", "DEBUG", "WARN", "ERROR", "TRACE", "TEST"};
constexpr off_t bytesPerMegabyte = 1000000;

// Written by log_init and log_close under `mutex`; null while the log is closed.
FILE *log = nullptr;
pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
std::atomic<bool> debugMode = false;
std::atomic<bool> writeLog = false;

class LogLock
{
public:
    LogLock() { pthread_mutex_lock(&mutex); }
    ~LogLock() { pthread_mutex_unlock(&mutex); }
    LogLock(const LogLock &) = delete;
    LogLock &operator=(const LogLock &) = delete;
};

/// True for what a terminal obeys instead of showing it. Line breaks are texts' own.
bool isCommand(gunichar character)
{
    return g_unichar_iscntrl(character) && character != '\n' && character != '\t';
}

/// The message as text that only says something: invalid bytes and control characters are replaced.
G_GNUC_PRINTF(1, 0) void writeMessage(const char *format, va_list arguments)
{
    g_autofree char *message = g_strdup_vprintf(format, arguments);
    g_autofree char *repaired = g_utf8_make_valid(message, -1);
    const char *written = repaired;
    for (const char *at = repaired; *at; at = g_utf8_next_char(at)) {
        if (!isCommand(g_utf8_get_char(at)))
            continue;
        fwrite(written, 1, size_t(at - written), log);
        fputs("\uFFFD", log);
        written = g_utf8_next_char(at);
    }
    fputs(written, log);
}

off_t sizeOf(FILE *stream)
{
    struct stat status;
    return fstat(fileno(stream), &status) == 0 ? status.st_size : 0;
}

/// Opens the log, after moving a full one away; null when it can't be opened.
FILE *openRotated(const char *directory, const char *fileName, int maxSizeMB, int maxFiles)
{
    g_autofree char *path = g_strdup_printf("%s/%s", directory, fileName);
    FILE *stream = fopen(path, "a+e");
    if (!stream || sizeOf(stream) / bytesPerMegabyte < maxSizeMB)
        return stream;
    GetRotationCount(directory, fileName, maxFiles);
    fclose(stream);
    return fopen(path, "ae");
}

/// The writer's own reference to its queue; null while the log is closed.
GAsyncQueue *referToQueue()
{
    const LogLock lock;
    return logMessageQueue ? g_async_queue_ref(logMessageQueue) : nullptr;
}

} // namespace

int log_init(const char *directory, const char *fileName, int maxSizeMB, int maxFiles)
{
    FILE *const stream = openRotated(directory, fileName, maxSizeMB, maxFiles);
    const LogLock lock;
    if (log)
        fclose(log);
    log = stream;
    if (!stream)
        return -1;
    g_clear_pointer(&logMessageQueue, g_async_queue_unref);
    logMessageQueue = g_async_queue_new_full(g_free);
    debugMode = false;
    writeLog = true;
    return 0;
}

void log_print(int level, int, const char *function, const char *format, ...)
{
    const LogLock lock;
    if (!log)
        return;
    const int index = std::clamp(level, 0, int(G_N_ELEMENTS(logLevel)) - 1);
    if (index == levelDebug && !debugMode)
        return;
    g_autofree char *now = print_time();
    fprintf(log, "%s <%s> [%s]: ", now, logLevel[index], function);
    va_list arguments;
    va_start(arguments, format);
    writeMessage(format, arguments);
    va_end(arguments);
    fputc('\n', log);
    fflush(log);
}

void trace_print(int, const char *function)
{
    const LogLock lock;
    if (!log)
        return;
    g_autofree char *now = print_time();
    fprintf(log, "%s <TRACE_CALL> [%s] \n", now, function);
    fflush(log);
}

char *print_time()
{
    const time_t now = time(nullptr);
    struct tm local = {};
    localtime_r(&now, &local);
    return g_strdup_printf("%d/%d/%d %d:%d:%d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                           local.tm_min, local.tm_sec);
}

void writeToLog()
{
    GAsyncQueue *const queue = referToQueue();
    if (!queue)
        return;
    while (writeLog) {
        g_autofree char *message = static_cast<char *>(g_async_queue_pop(queue));
        const LogLock lock;
        if (!log)
            break; // it was closed while this waited
        fprintf(log, "%s\n", message);
        fflush(log);
    }
    g_async_queue_unref(queue);
}

void setDebugMode(bool flag)
{
    debugMode = flag;
}

int log_close()
{
    const LogLock lock;
    if (!logMessageQueue)
        return 0;
    g_clear_pointer(&logMessageQueue, g_async_queue_unref);
    writeLog = false;
    return log ? fclose(std::exchange(log, nullptr)) : 0;
}
