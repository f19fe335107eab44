// Images from files. A screen with scale factor 2 gets twice the pixels, so that icons stay crisp; a file that can't be
// read never stops anything.

#include "src/Utils/panels.h"

#include "Logger/logger.h"

#include <cstring>

namespace
{

constexpr char shownFileKey[] = "shown-file";

int screenScale()
{
    GdkWindow *const root = gdk_get_default_root_window();
    return root ? gdk_window_get_scale_factor(root) : 1;
}

GtkWidget *newPixbufImage(GdkPixbuf *pixbuf, int scale)
{
    if (scale == 1)
        return gtk_image_new_from_pixbuf(pixbuf);
    cairo_surface_t *const surface = gdk_cairo_surface_create_from_pixbuf(pixbuf, scale, nullptr);
    GtkWidget *const image = gtk_image_new_from_surface(surface);
    cairo_surface_destroy(surface);
    return image;
}

/// An empty image that takes the room of a missing one.
GtkWidget *newEmptyImage(int sizePx)
{
    GtkWidget *const image = gtk_image_new();
    gtk_widget_set_size_request(image, sizePx, sizePx);
    return image;
}

/// "play.png" has its double size in "play@2x.png".
OwnedText doubleSizePath(const char *path)
{
    const char *const dot = strrchr(path, '.');
    if (!dot)
        return nullptr;
    return OwnedText(g_strdup_printf("%.*s@2x%s", int(dot - path), path, dot));
}

/// Shows the double size of a still picture; false where there is none.
bool setDoubleSize(GtkWidget *image, const char *path)
{
    const OwnedText doublePath = path && screenScale() == 2 ? doubleSizePath(path) : nullptr;
    g_autoptr(GdkPixbuf) pixbuf = doublePath ? gdk_pixbuf_new_from_file(doublePath.get(), nullptr) : nullptr;
    if (!pixbuf)
        return false;
    cairo_surface_t *const surface = gdk_cairo_surface_create_from_pixbuf(pixbuf, 2, nullptr);
    gtk_image_set_from_surface(GTK_IMAGE(image), surface);
    cairo_surface_destroy(surface);
    return true;
}

} // namespace

GtkWidget *resizeImages(const char *path, int sizePx, int marginPx)
{
    UI_ENTER();
    const int scale = screenScale();
    g_autoptr(GdkPixbuf) file = path ? gdk_pixbuf_new_from_file(path, nullptr) : nullptr;
    g_autoptr(GdkPixbuf) scaled =
        file ? gdk_pixbuf_scale_simple(file, sizePx * scale, sizePx * scale, GDK_INTERP_BILINEAR) : nullptr;
    GtkWidget *const image = scaled ? newPixbufImage(scaled, scale) : newEmptyImage(sizePx);
    g_object_set(image, "margin", marginPx, nullptr);
    return image;
}

GtkWidget *newImageFromFile(const char *path)
{
    GtkWidget *const image = gtk_image_new();
    setImageFromFile(image, path);
    return image;
}

void setImageFromFile(GtkWidget *image, const char *path)
{
    // The agent may report the same state again and again; the file is read once.
    if (path && g_strcmp0(static_cast<const char *>(g_object_get_data(G_OBJECT(image), shownFileKey)), path) == 0)
        return;
    if (!setDoubleSize(image, path))
        gtk_image_set_from_file(GTK_IMAGE(image), path);
    g_object_set_data_full(G_OBJECT(image), shownFileKey, g_strdup(path), g_free);
}
