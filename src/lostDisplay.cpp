// Xlib tells of its lost server. For a Wayland compositor the toolkit has no such call: it prints a message and ends
// the process, wherever it notices.

#include "src/lostDisplay.h"

#include <X11/Xlib.h>
#include <glib.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace
{

// Written by before_lost_display, before either display can be found lost.
void (*cleanUp)() = nullptr;

int leaveXServer(Display *)
{
    cleanUp();
    _exit(EXIT_FAILURE);
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
        cleanUp();
    return g_log_writer_default(level, fields, count, nullptr);
}

} // namespace

void before_lost_display(void (*clean)())
{
    cleanUp = clean;
    XSetIOErrorHandler(leaveXServer);
    g_log_set_writer_func(hearToolkit, nullptr, nullptr);
}
