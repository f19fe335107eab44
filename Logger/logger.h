#pragma once
// The program's log: one text file, "ui.log", opened and rotated at start-up and appended to by every thread.

#include <glib.h>

/// Feed of the optional writer loop `writeToLog`: owned strings. Made by `log_init`, released by `log_close`.
extern GAsyncQueue *logMessageQueue;
/// Slot for a thread that runs `writeToLog`; never started by the program itself.
extern GThread *fileWriter;

/// Levels as the first argument of `log_print`; the order is that of the file format, not of severity.
enum LogLevel { levelInfo = 0, levelDebug = 1, levelWarn = 2, levelError = 3, levelTrace = 4, levelTest = 5 };

/// Opens the log for appending, after rotating a file that has reached its size.
/// @param directory  must exist; it is never created; borrowed
/// @param fileName   name of the log inside it; borrowed
/// @param maxSizeMB  size from which the file is rotated, in millions of bytes
/// @param maxFiles   number of rotated files from which one name is used again and again
/// @return 0, or -1 when the file can't be opened: then later lines are dropped silently.
/// Thread: main, before any other thread logs. A second call opens the file anew, in place of the one before.
int log_init(const char *directory, const char *fileName, int maxSizeMB, int maxFiles);

/// Renames the current log out of the way and returns the number of rotated files that were there before.
/// Reports trouble on standard output only. Thread: main, from `log_init`.
int GetRotationCount(const char *directory, const char *fileName, int maxFiles);

/// Appends one line and flushes it. Debug lines are dropped while `setDebugMode` is off.
/// @param level     a `LogLevel`; anything outside the table is logged as the nearest level
/// @param line      the caller's source line; not written
/// @param function  the caller's name; borrowed
/// @param format    printf format; bytes of the message that aren't UTF-8, and control characters that are neither
///                  line breaks nor tabs, are replaced
/// Thread: any; lines never interleave. Silent when the log is closed.
void log_print(int level, int line, const char *function, const char *format, ...) G_GNUC_PRINTF(4, 5);

/// Appends the line that marks the entry into a function. Thread: any. Silent when the log is closed.
/// @param line      the caller's source line; not written
/// @param function  the function's name; borrowed
void trace_print(int line, const char *function);

/// The local time as "2024/3/7 9:5:2", unpadded; the caller frees it. Thread: any.
char *print_time();

/// Writes what arrives on `logMessageQueue` until `log_close`; blocks. For a thread of its own; nothing starts one.
void writeToLog();

/// Switches lines of level DEBUG on or off; they are off after `log_init`. Thread: any.
void setDebugMode(bool flag);

/// Closes the log; later lines are dropped. @return what closing gave, 0 when no log is open.
/// Thread: main, at the end of the shut-down.
int log_close();

#define UI_ENTER() trace_print(__LINE__, __func__)
#define UI_INFO(...) log_print(levelInfo, __LINE__, __func__, __VA_ARGS__)
/// For a helper that logs on behalf of the function that the log is to name.
#define UI_INFO_AS(function, ...) log_print(levelInfo, __LINE__, function, __VA_ARGS__)
#define UI_DEBUG(...) log_print(levelDebug, __LINE__, __func__, __VA_ARGS__)
#define UI_ERROR(...) log_print(levelError, __LINE__, __func__, __VA_ARGS__)
#define UI_ERROR_AS(function, ...) log_print(levelError, __LINE__, function, __VA_ARGS__)
#define UI_TRACE(...) log_print(levelTrace, __LINE__, __func__, __VA_ARGS__)
