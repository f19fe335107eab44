// One window as large as the screen, above every window but the companion's. With a tool it takes the pointer and
// paints; with the cursor every click goes through it.

#include "tools/annotationOverlay/overlayWindow.h"

#include "tools/annotationOverlay/backdrop.h"
#include "tools/annotationOverlay/companionPipes.h"
#include "tools/annotationOverlay/drawing.h"

#include <gtk/gtk.h>

#include <memory>
#include <optional>
#include <utility>

namespace
{

constexpr guint settleMs = 150; // time for the windows behind to repaint themselves

/// A command that chooses a tool.
struct ToolCommand {
    const char *command;
    Tool tool;
};

constexpr ToolCommand toolCommands[] = {
    {"2", Tool::pen}, {"3", Tool::rectangle}, {"4", Tool::ellipse}, {"6", Tool::eraser}, {"8", Tool::line},
};
constexpr char clearCommand[] = "7";

/// The overlay; one for the program.
struct Overlay {
    GtkWidget *window = nullptr;
    Tool tool = Tool::cursor;
    std::unique_ptr<Drawing> drawing;
    std::optional<Stroke> stroke;      ///< under the pressed button
    cairo_surface_t *screen = nullptr; ///< what is behind, on a screen without transparency
    guint pictureTimer = 0;
    std::function<void()> backToCursor;
};

Overlay overlay;

void queueDraw(const Area &area)
{
    gtk_widget_queue_draw_area(overlay.window, int(area.left) - 1, int(area.top) - 1, int(area.right - area.left) + 3,
                               int(area.bottom - area.top) + 3);
}

void setCursor(bool isDrawing)
{
    GdkDisplay *const display = gtk_widget_get_display(overlay.window);
    g_autoptr(GdkCursor) cursor = gdk_cursor_new_from_name(display, isDrawing ? "crosshair" : "default");
    gdk_window_set_cursor(gtk_widget_get_window(overlay.window), cursor);
}

/// The companion stays on top of the overlay, so that its tools can be reached while one of them is in use.
void stayBelowCompanion()
{
    gdk_window_lower(gtk_widget_get_window(overlay.window));
}

void showForDrawing()
{
    cutWindow(overlay.window, nullptr);
    takePointer(overlay.window, true);
    setCursor(true);
    gtk_widget_queue_draw(overlay.window);
    stayBelowCompanion();
}

gboolean on_screen_settled(gpointer)
{
    overlay.pictureTimer = 0;
    g_clear_pointer(&overlay.screen, cairo_surface_destroy);
    overlay.screen = pictureScreen(overlay.window);
    showForDrawing();
    return G_SOURCE_REMOVE;
}

/// Takes itself off the screen before it pictures it.
void pictureScreenSoon()
{
    cairo_surface_t *const nothing = cairo_image_surface_create(CAIRO_FORMAT_A1, 1, 1);
    cutWindow(overlay.window, nothing);
    cairo_surface_destroy(nothing);
    overlay.pictureTimer = g_timeout_add(settleMs, on_screen_settled, nullptr);
}

void showForCursor()
{
    g_clear_handle_id(&overlay.pictureTimer, g_source_remove);
    takePointer(overlay.window, false);
    setCursor(false);
    if (!isTransparent(overlay.window))
        cutWindow(overlay.window, overlay.drawing->picture());
    g_clear_pointer(&overlay.screen, cairo_surface_destroy);
    gtk_widget_queue_draw(overlay.window);
}

void chooseTool(Tool tool)
{
    overlay.stroke.reset();
    const bool wasDrawing = overlay.tool != Tool::cursor;
    overlay.tool = tool;
    if (wasDrawing)
        return;
    if (isTransparent(overlay.window))
        showForDrawing();
    else
        pictureScreenSoon();
}

void leaveTool()
{
    overlay.stroke.reset();
    overlay.tool = Tool::cursor;
    showForCursor();
    overlay.backToCursor();
}

/// With the cursor there is no tool to leave later, so the companion is told at once that its tools can be used.
void clearDrawing()
{
    overlay.stroke.reset();
    overlay.drawing->clear();
    if (overlay.tool == Tool::cursor)
        leaveTool();
    else
        gtk_widget_queue_draw(overlay.window);
}

void paintUnfinished(cairo_t *cr)
{
    cairo_push_group(cr);
    cairo_set_source_surface(cr, overlay.drawing->picture(), 0, 0);
    cairo_paint(cr);
    if (overlay.stroke)
        paintStroke(cr, *overlay.stroke);
    cairo_pop_group_to_source(cr);
    cairo_paint(cr);
}

gboolean on_draw(GtkWidget *, cairo_t *cr, gpointer)
{
    cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    if (overlay.screen) {
        cairo_set_source_surface(cr, overlay.screen, 0, 0);
        cairo_paint(cr);
    }
    paintUnfinished(cr);
    return true;
}

gboolean on_press(GtkWidget *, GdkEventButton *event, gpointer)
{
    stayBelowCompanion();
    if (event->button == GDK_BUTTON_SECONDARY && event->type == GDK_BUTTON_PRESS)
        leaveTool();
    else if (event->button == GDK_BUTTON_PRIMARY && event->type == GDK_BUTTON_PRESS)
        overlay.stroke = Stroke{overlay.tool, {{event->x, event->y}}};
    return true;
}

gboolean on_motion(GtkWidget *, GdkEventMotion *event, gpointer)
{
    if (!overlay.stroke)
        return true;
    queueDraw(strokeArea(*overlay.stroke));
    extendStroke(*overlay.stroke, {event->x, event->y});
    queueDraw(strokeArea(*overlay.stroke));
    return true;
}

gboolean on_release(GtkWidget *, GdkEventButton *event, gpointer)
{
    if (event->button != GDK_BUTTON_PRIMARY || !overlay.stroke)
        return true;
    overlay.drawing->add(*overlay.stroke);
    queueDraw(strokeArea(*overlay.stroke));
    overlay.stroke.reset();
    return true;
}

gboolean on_key(GtkWidget *, GdkEventKey *event, gpointer)
{
    if (event->keyval != GDK_KEY_Escape)
        return true;
    leaveTool(); // the companion makes its tools usable again
    gtk_main_quit();
    return true;
}

/// A row less than the screen: window managers put a focused window of exactly its size above everything else, and the
/// companion's tools must stay within reach.
Size overlaySize()
{
    GdkWindow *const root = gdk_screen_get_root_window(gdk_screen_get_default());
    return {gdk_window_get_width(root), gdk_window_get_height(root) - 1};
}

void connectInput(GtkWidget *window)
{
    gtk_widget_add_events(window, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_BUTTON_MOTION_MASK);
    g_signal_connect(window, "draw", G_CALLBACK(on_draw), nullptr);
    g_signal_connect(window, "button-press-event", G_CALLBACK(on_press), nullptr);
    g_signal_connect(window, "motion-notify-event", G_CALLBACK(on_motion), nullptr);
    g_signal_connect(window, "button-release-event", G_CALLBACK(on_release), nullptr);
    g_signal_connect(window, "key-press-event", G_CALLBACK(on_key), nullptr);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
}

GtkWidget *newWindow(Size size)
{
    GtkWidget *const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    useTransparentVisual(window);
    gtk_window_set_title(GTK_WINDOW(window), "Annotation");
    gtk_window_set_decorated(GTK_WINDOW(window), false);
    gtk_window_set_keep_above(GTK_WINDOW(window), true);
    gtk_window_set_skip_taskbar_hint(GTK_WINDOW(window), true);
    gtk_window_set_skip_pager_hint(GTK_WINDOW(window), true);
    gtk_window_set_focus_on_map(GTK_WINDOW(window), false);
    gtk_window_set_default_size(GTK_WINDOW(window), size.width, size.height);
    gtk_window_move(GTK_WINDOW(window), 0, 0);
    return window;
}

} // namespace

void openOverlay(std::function<void()> backToCursor)
{
    const Size size = overlaySize();
    overlay.backToCursor = std::move(backToCursor);
    overlay.drawing = std::make_unique<Drawing>(size.width, size.height);
    overlay.window = newWindow(size);
    connectInput(overlay.window);
    gtk_widget_realize(overlay.window);
    showForCursor();
    gtk_widget_show(overlay.window);
    stayBelowCompanion();
}

void obeyCommand(const std::string &command)
{
    for (const ToolCommand &row : toolCommands)
        if (command == row.command)
            chooseTool(row.tool);
    if (command == clearCommand)
        clearDrawing();
    else if (command == exitCommand)
        gtk_main_quit();
}
