// Waiting on a FIFO. A plain open() for writing can't be called back, so the open is tried in steps: short ones first,
// for an agent that is just between two rounds of its reader, longer ones when nobody seems to be there.

#include "src/Utils/pipeWaiting.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace
{

constexpr gulong firstStepUs = 100;
constexpr gulong longestStepUs = 10000;
constexpr int fullPipeStepMs = 50;

/// Waits until a full pipe takes more, or a moment has passed.
void waitForRoom(int descriptor)
{
    struct pollfd room = {descriptor, POLLOUT, 0};
    poll(&room, 1, fullPipeStepMs);
}

} // namespace

int openForWriting(const char *path, GiveUp giveUp)
{
    for (gulong stepUs = firstStepUs;; stepUs = std::min(stepUs + stepUs / 8 + 1, longestStepUs)) {
        const int descriptor = open(path, O_WRONLY | O_NONBLOCK | O_TRUNC | O_CLOEXEC);
        if (descriptor >= 0 || (errno != ENXIO && errno != EINTR))
            return descriptor;
        if (giveUp()) {
            errno = ECANCELED;
            return -1;
        }
        g_usleep(stepUs);
    }
}

bool writeWhole(int descriptor, const char *text, gsize length, GiveUp giveUp)
{
    while (length > 0) {
        const ssize_t written = write(descriptor, text, length);
        if (written >= 0) {
            text += written;
            length -= gsize(written);
        } else if (errno == EAGAIN && !giveUp()) {
            waitForRoom(descriptor);
        } else if (errno == EAGAIN) {
            errno = ECANCELED;
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}
