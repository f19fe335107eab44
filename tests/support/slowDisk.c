// A disk that takes its time for a transcript: far longer than a session that was asked to end waits for anything else,
// by the clock of the tests, which goes ten times as fast.

#define _GNU_SOURCE
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

static int isTranscript(int file)
{
    char link[64], path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0)
        return 0;
    path[length] = '\0';
    return strstr(path, "Brindle_Chat_Log") != NULL;
}

ssize_t write(int file, const void *bytes, size_t count)
{
    struct timespec left = {5, 0};
    while (isTranscript(file) && syscall(SYS_nanosleep, &left, &left) != 0) {
    }
    return syscall(SYS_write, file, bytes, count);
}
