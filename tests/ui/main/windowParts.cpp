// Looking at the parts of the control window.

#include "tests/ui/main/windowParts.h"

#include "tests/support/widgetSearch.h"

namespace
{

std::string orEmpty(const char *text)
{
    return text ? text : "";
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
    g_autofree char *path = nullptr;
    if (GTK_IS_IMAGE(image))
        g_object_get(image, "file", &path, nullptr);
    g_autofree char *name = path ? g_path_get_basename(path) : nullptr;
    return orEmpty(name);
}

std::string shownFileOn(GtkWidget *button)
{
    return shownFile(gtk_button_get_image(GTK_BUTTON(button)));
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
