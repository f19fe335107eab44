// Xlib tells of its lost server; for Wayland there is only the connection to watch. Its functions are asked for by
// name, since the toolkit at hand may have been built without them.

#include "src/lostDisplay.h"

#include "src/support.h"

#include <X11/Xlib.h>
#include <glib-unix.h>
#include <gmodule.h>
#include <unistd.h>

#include <cstdlib>

namespace
{

using Connection = gpointer (*)(GdkDisplay *);
using Descriptor = int (*)(gpointer);

// Written by before_lost_display, before either display can be found lost.
void (*cleanUp)() = nullptr;

int leaveXServer(Display *)
{
    cleanUp();
    _exit(EXIT_FAILURE);
}

/// The toolkit is next: it prints what went wrong and ends the process with the same status.
gboolean leaveCompositor(int, GIOCondition, gpointer)
{
    cleanUp();
    return G_SOURCE_REMOVE;
}

template <typename Function> Function findFunction(GModule *program, const char *name)
{
    gpointer symbol = nullptr;
    return g_module_symbol(program, name, &symbol) ? reinterpret_cast<Function>(symbol) : nullptr;
}

/// The descriptor of the connection to the compositor, or -1.
int findConnection(GdkDisplay *display)
{
    GModule *const program = g_module_open(nullptr, G_MODULE_BIND_LAZY);
    const auto connection = findFunction<Connection>(program, "gdk_wayland_display_get_wl_display");
    const auto descriptor = findFunction<Descriptor>(program, "wl_display_get_fd");
    const int found = connection && descriptor ? descriptor(connection(display)) : -1;
    g_module_close(program);
    return found;
}

} // namespace

void before_lost_display(void (*clean)())
{
    cleanUp = clean;
    XSetIOErrorHandler(leaveXServer);
    GdkDisplay *const display = gdk_display_get_default();
    if (g_strcmp0(G_OBJECT_TYPE_NAME(display), "GdkWaylandDisplay") != 0)
        return;
    const int connection = findConnection(display);
    if (connection >= 0) // before the toolkit's own source, which ends the process
        g_unix_fd_add_full(G_PRIORITY_HIGH, connection, GIOCondition(G_IO_HUP | G_IO_ERR), leaveCompositor, nullptr,
                           nullptr);
}
