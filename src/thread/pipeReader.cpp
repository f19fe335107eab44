// The reader of the agent's pipe: one writer session becomes one text in the queue. The next read end is opened before
// the last one is closed, so that the pipe always has a reader and a text written in between waits in it.

#include "src/thread/thread.h"

#include "Logger/logger.h"
#include "src/Utils/descriptor.h"
#include "src/Utils/pipeTransport.h"
#include "src/sessionState.h"
#include "src/support.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{

constexpr gsize chunkBytes = 65536;
constexpr char substitute = 0x1a; // stands for a NUL, which would cut the text; nothing is removed

/// Waits until a writer has come, which is also what the end of a text looks like.
void waitForWriter(int descriptor)
{
    struct pollfd readable = {descriptor, POLLIN, 0};
    while (poll(&readable, 1, -1) < 0 && errno == EINTR) {
    }
}

/// Reads until the last writer has closed. @return null with errno set when reading fails
OwnedText readWriterSession(int descriptor)
{
    GString *const text = g_string_new(nullptr);
    char chunk[chunkBytes];
    for (;;) {
        const ssize_t length = read(descriptor, chunk, sizeof chunk);
        if (length == 0)
            break;
        if (length > 0) {
            std::replace(chunk, chunk + length, '\0', substitute);
            g_string_append_len(text, chunk, length);
        } else if (errno == EAGAIN) {
            waitForWriter(descriptor);
        } else if (errno != EINTR) {
            g_string_free(text, TRUE);
            return nullptr;
        }
    }
    return OwnedText(g_string_free(text, FALSE));
}

bool isFifo(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

void endReception(const char *reason)
{
    UI_INFO_AS("infiniteChecker", "error reading pipe %s", reason);
    UI_INFO_AS("infiniteChecker", "Closing thread");
}

} // namespace

gpointer infiniteChecker(gpointer)
{
    UI_ENTER();
    const OwnedText path(g_strdup(g_AgentStatus));
    constexpr int mode = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    int failure = 0;
    Descriptor pipe(open(path.get(), mode));
    while (g_threadChecker) {
        // Kept on purpose: the failure of an earlier round is not forgotten, so one failed read ends reception.
        if (pipe.get() < 0)
            failure = errno;
        if (failure != 0) {
            endReception(g_strerror(failure));
            return nullptr;
        }
        waitForWriter(pipe.get());
        UI_INFO("file opened properly ");
        OwnedText text = readWriterSession(pipe.get());
        if (text) {
            pushText(pipeMessageQueue, std::move(text));
        } else {
            failure = errno;
            UI_INFO("error occured while writing pipes");
            UI_INFO("Error has occured");
        }
        // A file that is no pipe would be read again and again without an end.
        if (!isFifo(pipe.get()))
            failure = failure ? failure : ESPIPE;
        pipe.reset(open(path.get(), mode));
    }
    UI_INFO("Closing thread");
    return nullptr;
}
