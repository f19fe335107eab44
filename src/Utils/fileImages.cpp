// Images from files. A screen with scale factor 2 gets twice the pixels, so that icons stay crisp; a file that can't be
// read never stops anything. Decoded pictures are kept, since the start/stop button asks for its two at every click.

#include "src/Utils/panels.h"

#include "Logger/logger.h"

#include <cstring>

namespace
{

constexpr char shownFileKey[] = "shown-file";

// Path to picture, both owned; made at the first use and kept to the end of the process. Main thread.
GHashTable *pictures = nullptr;

/// The picture in a file, decoded once; borrowed, null for a file that can't be read.
GdkPixbuf *readPicture(const char *path)
{
    if (!path)
        return nullptr;
    if (!pictures)
        pictures = g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_object_unref);
    auto *picture = static_cast<GdkPixbuf *>(g_hash_table_lookup(pictures, path));
    if (picture)
        return picture;
    picture = gdk_pixbuf_new_from_file(path, nullptr);
    if (picture)
        g_hash_table_insert(pictures, g_strdup(path), picture);
    return picture;
}

int screenScale()
{
    GdkWindow *const root = gdk_get_default_root_window();
    return root ? gdk_window_get_scale_factor(root) : 1;
}

/// True for the themes of people who need strong contrasts; the environment goes before the settings, as for GTK.
bool isHighContrast()
{
    g_autofree char *theme = g_strdup(g_getenv("GTK_THEME"));
    if (!theme)
        g_object_get(gtk_settings_get_default(), "gtk-theme-name", &theme, nullptr);
    return theme && g_str_has_prefix(theme, "HighContrast");
}

/// Paints every pixel of a one-coloured picture in another colour; its shape, which is its alpha, stays.
void paintPixels(GdkPixbuf *picture, const GdkRGBA &colour)
{
    if (!gdk_pixbuf_get_has_alpha(picture))
        return;
    const guchar rgb[] = {guchar(colour.red * 255), guchar(colour.green * 255), guchar(colour.blue * 255)};
    constexpr gsize bytesPerPixel = 4;
    guchar *const pixels = gdk_pixbuf_get_pixels(picture);
    for (int y = 0; y < gdk_pixbuf_get_height(picture); y++)
        for (int x = 0; x < gdk_pixbuf_get_width(picture); x++)
            memcpy(pixels + gsize(y) * gdk_pixbuf_get_rowstride(picture) + gsize(x) * bytesPerPixel, rgb, sizeof rgb);
}

/// Tool icons take the colour of the text where the theme asks for strong contrasts.
void followTheme(GdkPixbuf *icon)
{
    if (!isHighContrast())
        return;
    GtkWidget *const label = GTK_WIDGET(g_object_ref_sink(gtk_label_new("")));
    GdkRGBA colour;
    if (gtk_style_context_lookup_color(gtk_widget_get_style_context(label), "theme_fg_color", &colour))
        paintPixels(icon, colour);
    g_object_unref(label);
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

/// Shows the double size of a picture; false where there is none.
bool setDoubleSize(GtkWidget *image, const char *path)
{
    GdkPixbuf *const picture = readPicture(doubleSizePath(path).get());
    if (!picture)
        return false;
    cairo_surface_t *const surface = gdk_cairo_surface_create_from_pixbuf(picture, 2, nullptr);
    gtk_image_set_from_surface(GTK_IMAGE(image), surface);
    cairo_surface_destroy(surface);
    return true;
}

/// Shows a picture in its own size; a missing file shows as the toolkit's broken image.
void setOwnSize(GtkWidget *image, const char *path)
{
    if (GdkPixbuf *const picture = readPicture(path))
        gtk_image_set_from_pixbuf(GTK_IMAGE(image), picture);
    else
        gtk_image_set_from_file(GTK_IMAGE(image), path);
}

} // namespace

OwnedText doubleSizePath(const char *path)
{
    const char *const dot = path && screenScale() == 2 ? strrchr(path, '.') : nullptr;
    if (!dot)
        return nullptr;
    return OwnedText(g_strdup_printf("%.*s@2x%s", int(dot - path), path, dot));
}

GtkWidget *resizeImages(const char *path, int sizePx, int marginPx)
{
    UI_ENTER();
    const int scale = screenScale();
    GdkPixbuf *const file = readPicture(path);
    g_autoptr(GdkPixbuf) scaled =
        file ? gdk_pixbuf_scale_simple(file, sizePx * scale, sizePx * scale, GDK_INTERP_BILINEAR) : nullptr;
    if (scaled)
        followTheme(scaled);
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
        setOwnSize(image, path);
    g_object_set_data_full(G_OBJECT(image), shownFileKey, g_strdup(path), g_free);
}
