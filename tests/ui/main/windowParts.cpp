// Looking at the parts of the control window.

#include "tests/ui/main/windowParts.h"

#include "tests/support/widgetSearch.h"

#include <cstring>
#include <filesystem>
#include <memory>

namespace
{

std::string orEmpty(const char *text)
{
    return text ? text : "";
}

struct FreeSurface {
    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, FreeSurface>;

Surface newSurface(const GdkPixbuf *picture)
{
    return Surface(gdk_cairo_surface_create_from_pixbuf(picture, 1, nullptr));
}

/// What an image shows, however it came there; null for an icon or nothing.
Surface surfaceOf(GtkWidget *image)
{
    if (!GTK_IS_IMAGE(image))
        return nullptr;
    if (const GdkPixbuf *const picture = gtk_image_get_pixbuf(GTK_IMAGE(image)))
        return newSurface(picture);
    cairo_surface_t *surface = nullptr;
    g_object_get(image, "surface", &surface, nullptr);
    return Surface(surface);
}

bool looksTheSame(cairo_surface_t *one, cairo_surface_t *other)
{
    const int stride = cairo_image_surface_get_stride(one), height = cairo_image_surface_get_height(one);
    return cairo_image_surface_get_width(one) == cairo_image_surface_get_width(other) &&
           stride == cairo_image_surface_get_stride(other) && height == cairo_image_surface_get_height(other) &&
           memcmp(cairo_image_surface_get_data(one), cairo_image_surface_get_data(other),
                  size_t(stride) * size_t(height)) == 0;
}

} // namespace

std::vector<GtkWidget *> childrenOf(GtkWidget *container)
{
    g_autoptr(GList) list = gtk_container_get_children(GTK_CONTAINER(container));
    std::vector<GtkWidget *> all;
    for (const GList *each = list; each; each = each->next)
        all.push_back(GTK_WIDGET(each->data));
    return all;
}

std::string shownFile(GtkWidget *image)
{
    const Surface shown = surfaceOf(image);
    if (!shown)
        return "";
    for (const auto &entry : std::filesystem::directory_iterator(RESOURCE_FOLDER)) {
        g_autoptr(GdkPixbuf) picture = gdk_pixbuf_new_from_file(entry.path().c_str(), nullptr);
        if (picture && looksTheSame(shown.get(), newSurface(picture).get()))
            return entry.path().filename();
    }
    return "";
}

GtkWidget *imageOn(GtkWidget *button)
{
    GtkWidget *const image = gtk_button_get_image(GTK_BUTTON(button));
    return image ? image : gtk_bin_get_child(GTK_BIN(button));
}

std::string shownFileOn(GtkWidget *button)
{
    return shownFile(imageOn(button));
}

std::string pictureSize(GtkWidget *image)
{
    const GdkPixbuf *const picture = GTK_IS_IMAGE(image) ? gtk_image_get_pixbuf(GTK_IMAGE(image)) : nullptr;
    if (!picture)
        return "";
    return std::to_string(gdk_pixbuf_get_width(picture)) + "x" + std::to_string(gdk_pixbuf_get_height(picture));
}

std::string shownIcon(GtkWidget *image)
{
    const char *name = nullptr;
    GtkIconSize size = GTK_ICON_SIZE_INVALID;
    gtk_image_get_icon_name(GTK_IMAGE(image), &name, &size);
    return orEmpty(name) + " " + std::to_string(size);
}

std::string accessibleName(GtkWidget *widget)
{
    return orEmpty(atk_object_get_name(gtk_widget_get_accessible(widget)));
}

std::string tooltipOf(GtkWidget *widget)
{
    g_autofree char *text = gtk_widget_get_tooltip_text(widget);
    return orEmpty(text);
}

std::string marginsOf(GtkWidget *widget)
{
    return std::to_string(gtk_widget_get_margin_start(widget)) + " " +
           std::to_string(gtk_widget_get_margin_end(widget)) + " " + std::to_string(gtk_widget_get_margin_top(widget)) +
           " " + std::to_string(gtk_widget_get_margin_bottom(widget));
}

std::string packingOf(GtkWidget *child)
{
    gboolean expand = FALSE, fill = FALSE;
    guint padding = 0;
    GtkPackType type = GTK_PACK_START;
    gtk_box_query_child_packing(GTK_BOX(gtk_widget_get_parent(child)), child, &expand, &fill, &padding, &type);
    return std::string(type == GTK_PACK_START ? "start" : "end") + (expand ? " expand" : "") + (fill ? " fill" : "") +
           " " + std::to_string(padding);
}

bool clickHeader(GtkWidget *panel, const guint button)
{
    GtkWidget *const eventBox = findWidget(panel, [](GtkWidget *widget) { return GTK_IS_EVENT_BOX(widget); });
    GdkEvent *const event = gdk_event_new(GDK_BUTTON_RELEASE);
    event->button.button = button;
    gboolean isSwallowed = FALSE;
    g_signal_emit_by_name(eventBox, "button-release-event", event, &isSwallowed);
    gdk_event_free(event);
    return isSwallowed;
}
