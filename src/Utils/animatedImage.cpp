// Animated images. The toolkit plays a file with one pixel a point only and would draw it coarse at scale factor 2:
// there the frames of the double-size file are painted one after the other. The timer belongs to the image: it runs
// while the image is on the screen, and not at all for people who want no animations.

#include "src/Utils/panels.h"

namespace
{

constexpr char playerKey[] = "frame-player";
constexpr int doubleScale = 2;

/// What plays in an image, which owns it.
struct FramePlayer {
    GdkPixbufAnimationIter *frames; ///< owned
    cairo_surface_t *surface;       ///< owned; what the image shows
};

void freePlayer(gpointer data)
{
    auto *const player = static_cast<FramePlayer *>(data);
    cairo_surface_destroy(player->surface);
    g_object_unref(player->frames);
    delete player;
}

guint timerOf(GtkWidget *image)
{
    return GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(image), frameTimerKey));
}

void keepTimer(GtkWidget *image, guint timerId)
{
    g_object_set_data(G_OBJECT(image), frameTimerKey, GUINT_TO_POINTER(timerId));
}

FramePlayer *playerOf(GtkWidget *image)
{
    return static_cast<FramePlayer *>(g_object_get_data(G_OBJECT(image), playerKey));
}

/// Into the picture that the image has already: another one would have the window laid out anew at each frame.
void paintFrame(GtkWidget *image)
{
    const FramePlayer *const player = playerOf(image);
    cairo_t *const context = cairo_create(player->surface);
    cairo_scale(context, 1.0 / doubleScale, 1.0 / doubleScale);
    gdk_cairo_set_source_pixbuf(context, gdk_pixbuf_animation_iter_get_pixbuf(player->frames), 0, 0);
    cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
    cairo_paint(context);
    cairo_destroy(context);
    gtk_widget_queue_draw(image);
}

void waitForNextFrame(GtkWidget *image);

gboolean showNextFrame(gpointer data)
{
    auto *const image = static_cast<GtkWidget *>(data);
    keepTimer(image, 0);
    if (gdk_pixbuf_animation_iter_advance(playerOf(image)->frames, nullptr))
        paintFrame(image);
    waitForNextFrame(image);
    return G_SOURCE_REMOVE;
}

void waitForNextFrame(GtkWidget *image)
{
    gboolean animated = FALSE;
    g_object_get(gtk_widget_get_settings(image), "gtk-enable-animations", &animated, nullptr);
    const int delayMs = gdk_pixbuf_animation_iter_get_delay_time(playerOf(image)->frames);
    if (animated && delayMs >= 0) // the last frame of one that ends stays
        keepTimer(image, g_timeout_add(guint(delayMs), showNextFrame, image));
}

void startPlaying(GtkWidget *image, FramePlayer *)
{
    if (!timerOf(image))
        waitForNextFrame(image);
}

/// Before each end of an image, too.
void stopPlaying(GtkWidget *image, FramePlayer *)
{
    if (const guint timerId = timerOf(image))
        g_source_remove(timerId);
    keepTimer(image, 0);
}

GtkWidget *newPlayer(GdkPixbufAnimation *animation)
{
    GdkPixbufAnimationIter *const frames = gdk_pixbuf_animation_get_iter(animation, nullptr);
    cairo_surface_t *const surface =
        gdk_cairo_surface_create_from_pixbuf(gdk_pixbuf_animation_iter_get_pixbuf(frames), doubleScale, nullptr);
    GtkWidget *const image = gtk_image_new_from_surface(surface);
    auto *const player = new FramePlayer{frames, surface};
    g_object_set_data_full(G_OBJECT(image), playerKey, player, freePlayer);
    connect_signal(image, "map", startPlaying, player);
    connect_signal(image, "unmap", stopPlaying, player);
    return image;
}

} // namespace

GtkWidget *newAnimatedImage(const char *path)
{
    const OwnedText doublePath = doubleSizePath(path);
    g_autoptr(GdkPixbufAnimation) animation =
        doublePath ? gdk_pixbuf_animation_new_from_file(doublePath.get(), nullptr) : nullptr;
    return animation ? newPlayer(animation) : gtk_image_new_from_file(path);
}
