// Margins through whichever function the toolkit at hand exports: newer versions have start and end, older ones left
// and right. The library is opened by name for each call and closed again; it stays loaded, since it is linked.

#include "src/Utils/panels.h"

#include "Logger/logger.h"

#include <gmodule.h>

namespace
{

constexpr char toolkitLibrary[] = "libgtk-3.so.0";
constexpr int statusRowMarginPx = 3;

using SetMargin = void (*)(GtkWidget *widget, int margin);

/// The first of two functions that the library has; null when it has neither.
SetMargin findFunction(GModule *library, const char *first, const char *second)
{
    gpointer symbol = nullptr;
    if (!g_module_symbol(library, first, &symbol) && !g_module_symbol(library, second, &symbol))
        return nullptr;
    return reinterpret_cast<SetMargin>(symbol);
}

/// Sets one margin by whichever function there is; a negative one is left alone.
void setMargin(GtkWidget *widget, int marginPx, SetMargin set, const char *missing)
{
    if (marginPx < 0)
        return;
    if (set)
        set(widget, marginPx);
    else
        UI_INFO_AS("set_widget_margins", "%s", missing);
}

} // namespace

void set_widget_margins(GtkWidget *widget, int start, int end, int top, int bottom)
{
    UI_ENTER();
    GModule *const library = g_module_open(toolkitLibrary, G_MODULE_BIND_LAZY);
    if (!library) {
        UI_INFO("set_widget_margins: error opening module");
        return;
    }
    setMargin(widget, start, findFunction(library, "gtk_widget_set_margin_start", "gtk_widget_set_margin_left"),
              "set_widget_margins: error getting margin_start/margin_left");
    setMargin(widget, end, findFunction(library, "gtk_widget_set_margin_end", "gtk_widget_set_margin_right"),
              "set_widget_margins: error getting margin_end/margin_right");
    if (top >= 0)
        gtk_widget_set_margin_top(widget, top);
    if (bottom >= 0)
        gtk_widget_set_margin_bottom(widget, bottom);
    if (!g_module_close(library))
        UI_INFO("set_widget_margins: error closing module");
}

int setDepricatedApis(MainWindow *mainwindow)
{
    UI_ENTER();
    GModule *const library = g_module_open(toolkitLibrary, G_MODULE_BIND_LAZY);
    if (!library) {
        UI_INFO("error opening module");
        return 0;
    }
    // Unlike above, the start margin has no older name to fall back to, and the right margin is preferred to the end.
    if (const SetMargin setStart =
            findFunction(library, "gtk_widget_set_margin_start", "gtk_widget_set_margin_start")) {
        setStart(mainwindow->statusLabel, statusRowMarginPx);
        setStart(mainwindow->statusIcon, statusRowMarginPx);
    } else {
        UI_INFO("error getting function margin_left");
    }
    if (const SetMargin setEnd = findFunction(library, "gtk_widget_set_margin_right", "gtk_widget_set_margin_end"))
        setEnd(mainwindow->startStopSharingButton, statusRowMarginPx);
    else
        UI_INFO("error getting function gtk_color_button_get_rgba"); // the log says so; kept
    if (!g_module_close(library))
        UI_INFO("error closing module");
    return 0;
}

gboolean on_button_press(GtkWidget *, GdkEventButton *event, GtkWidget *anyWidget)
{
    UI_ENTER();
    if (event->type == GDK_BUTTON_PRESS && event->button == GDK_BUTTON_PRIMARY)
        gtk_window_begin_move_drag(GTK_WINDOW(gtk_widget_get_toplevel(anyWidget)), GDK_BUTTON_PRIMARY,
                                   int(event->x_root), int(event->y_root), event->time);
    return GDK_EVENT_STOP;
}
