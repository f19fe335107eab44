// referenceReader FIFO COUNT: the least a reader can do that loses nothing: it reads to end of file again and again,
// the next read end opened before the last one is closed, until COUNT lines have come.

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

static int readToEnd(int pipe)
{
    char chunk[65536];
    int lines = 0;
    for (;;) {
        const ssize_t length = read(pipe, chunk, sizeof chunk);
        if (length == 0)
            return lines;
        if (length > 0) {
            lines += int(std::count(chunk, chunk + length, '\n'));
        } else {
            struct pollfd readable = {pipe, POLLIN, 0};
            poll(&readable, 1, -1);
        }
    }
}

int main(int argc, char **argv)
{
    if (argc != 3)
        return 64;
    int pipe = open(argv[1], O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    int lines = 0;
    while (pipe >= 0 && lines < atoi(argv[2])) {
        struct pollfd readable = {pipe, POLLIN, 0};
        poll(&readable, 1, -1);
        lines += readToEnd(pipe);
        const int next = open(argv[1], O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        close(pipe);
        pipe = next;
    }
    return pipe < 0;
}
