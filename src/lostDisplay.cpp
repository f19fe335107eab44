// Xlib tells of its lost server when it is used; who waits for something else looks at the connection. For a Wayland
// compositor the toolkit has no such call: it prints a message and ends the process, wherever it notices.

#include "src/lostDisplay.h"

#include "Logger/logger.h"

#include <gdk/gdkx.h>

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace
{

// Written by before_leaving, before either display can be found lost.
void (*cleanUp)() = nullptr;
void (*closeOthers)() = nullptr;
// The connection to the X server; -1 without one. Written by watch_display.
int xConnection = -1;
// Set by the thread that ends the process.
std::atomic<bool> isLeaving = false;
// Set by the first who ends the program that was asked to end: the main thread, or one that has waited for it in vain.
std::atomic<bool> isEndClaimed = false;
// Set while an `UnbrokenWork` lives.
std::atomic<bool> isWorkUnbroken = false;
constexpr gulong workPollUs = 10000;

enum class Loss { gone, hung };

/// Toolkit and waiting threads may all notice: the first one cleans up, the others wait here for the end. No work
/// begins any more; one that has begun a moment ago is waited for. It asks nothing of the display, so the thread that
/// does it is never the one that waits.
void cleanUpAfter(Loss loss)
{
    while (isLeaving.exchange(true))
        pause();
    while (isWorkUnbroken)
        g_usleep(workPollUs);
    if (loss == Loss::gone) {
        UI_INFO_AS("main", "the display has gone");
    } else {
        UI_INFO_AS("main", "the window hangs");
        closeOthers();
    }
    cleanUp();
}

[[noreturn]] void leave(Loss loss)
{
    cleanUpAfter(loss);
    _exit(EXIT_FAILURE);
}

int leaveXServer(Display *)
{
    leave(Loss::gone);
}

/// The text of a field, or an empty one.
const char *field(const GLogField *fields, gsize count, const char *key)
{
    for (gsize i = 0; i < count; i++)
        if (strcmp(fields[i].key, key) == 0 && fields[i].length < 0)
            return static_cast<const char *>(fields[i].value);
    return "";
}

bool isLostCompositor(const char *message)
{
    return g_str_has_prefix(message, "Error ") || g_str_has_prefix(message, "Lost connection");
}

GLogWriterOutput hearToolkit(GLogLevelFlags level, const GLogField *fields, gsize count, gpointer)
{
    const bool isToolkit = level & G_LOG_LEVEL_MESSAGE && strcmp(field(fields, count, "GLIB_DOMAIN"), "Gdk") == 0;
    if (isToolkit && isLostCompositor(field(fields, count, "MESSAGE")))
        cleanUpAfter(Loss::gone);
    return g_log_writer_default(level, fields, count, nullptr);
}

} // namespace

void before_leaving(void (*clean)(), void (*close)())
{
    cleanUp = clean;
    closeOthers = close;
}

void watch_display()
{
    XSetIOErrorHandler(leaveXServer);
    g_log_set_writer_func(hearToolkit, nullptr, nullptr);
    GdkDisplay *const display = gdk_display_get_default();
    if (GDK_IS_X11_DISPLAY(display))
        xConnection = ConnectionNumber(gdk_x11_display_get_xdisplay(display));
}

void leave_lost_display()
{
    struct pollfd server = {xConnection, POLLRDHUP, 0};
    if (!isWorkUnbroken && poll(&server, 1, 0) > 0)
        leave(Loss::gone);
}

UnbrokenWork::UnbrokenWork()
{
    isWorkUnbroken = true;
    while (isLeaving) {
        isWorkUnbroken = false;
        pause();
    }
}

UnbrokenWork::~UnbrokenWork()
{
    isWorkUnbroken = false;
}

void leave_hung_program(int patienceSeconds)
{
    for (int seconds = 0; seconds < patienceSeconds && !isEndClaimed; seconds = isWorkUnbroken ? 0 : seconds + 1)
        g_usleep(G_USEC_PER_SEC);
    if (!isEndClaimed.exchange(true))
        leave(Loss::hung);
}

void claim_end()
{
    while (isEndClaimed.exchange(true))
        pause();
}
