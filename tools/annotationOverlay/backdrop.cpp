// Where a compositor runs, the overlay is see-through. Where none does, it shows a picture of the screen while a tool
// is in use, and is cut down to what is drawn while the customer works with the cursor.

#include "tools/annotationOverlay/backdrop.h"

void useTransparentVisual(GtkWidget *window)
{
    if (GdkVisual *const visual = gdk_screen_get_rgba_visual(gtk_widget_get_screen(window)))
        gtk_widget_set_visual(window, visual);
    gtk_widget_set_app_paintable(window, true);
}

bool isTransparent(GtkWidget *window)
{
    GdkScreen *const screen = gtk_widget_get_screen(window);
    return gdk_screen_is_composited(screen) && gdk_screen_get_rgba_visual(screen);
}

cairo_surface_t *pictureScreen(GtkWidget *window)
{
    GdkWindow *const root = gdk_screen_get_root_window(gtk_widget_get_screen(window));
    g_autoptr(GdkPixbuf) pixels =
        gdk_pixbuf_get_from_window(root, 0, 0, gdk_window_get_width(root), gdk_window_get_height(root));
    return pixels ? gdk_cairo_surface_create_from_pixbuf(pixels, gdk_window_get_scale_factor(root), nullptr) : nullptr;
}

void takePointer(GtkWidget *window, bool takes)
{
    cairo_region_t *const nowhere = takes ? nullptr : cairo_region_create();
    gtk_widget_input_shape_combine_region(window, nowhere);
    if (nowhere)
        cairo_region_destroy(nowhere);
}

void cutWindow(GtkWidget *window, cairo_surface_t *picture)
{
    cairo_region_t *const drawn = picture ? gdk_cairo_region_create_from_surface(picture) : nullptr;
    gtk_widget_shape_combine_region(window, drawn);
    if (drawn)
        cairo_region_destroy(drawn);
}
