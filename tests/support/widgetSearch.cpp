// Finding real widgets as a customer names them.

#include "tests/support/widgetSearch.h"

namespace
{

void collect(GtkWidget *widget, gpointer all)
{
    static_cast<std::vector<GtkWidget *> *>(all)->push_back(widget);
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), collect, all);
}

std::string orEmpty(const char *text)
{
    return text ? text : "";
}

} // namespace

std::vector<GtkWidget *> allWidgets(GtkWidget *root)
{
    std::vector<GtkWidget *> all;
    if (root)
        collect(root, &all);
    return all;
}

GtkWidget *findWidget(GtkWidget *root, const std::function<bool(GtkWidget *)> &question)
{
    for (GtkWidget *const widget : allWidgets(root))
        if (question(widget))
            return widget;
    return nullptr;
}

GtkWidget *findByName(GtkWidget *root, const std::string &name)
{
    return findWidget(root, [&](GtkWidget *widget) { return name == gtk_widget_get_name(widget); });
}

GtkWidget *findButton(GtkWidget *root, const std::string &label)
{
    return findWidget(root, [&](GtkWidget *widget) { return GTK_IS_BUTTON(widget) && shownText(widget) == label; });
}

GtkWidget *findLabel(GtkWidget *root, const std::string &text)
{
    return findWidget(root, [&](GtkWidget *widget) { return GTK_IS_LABEL(widget) && shownText(widget) == text; });
}

GtkWidget *findByTooltip(GtkWidget *root, const std::string &tooltip)
{
    return findWidget(root, [&](GtkWidget *widget) {
        g_autofree char *text = gtk_widget_get_tooltip_text(widget);
        return text && tooltip == text;
    });
}

GtkWidget *findMenuItem(GtkWidget *menu, const std::string &label)
{
    return findWidget(menu, [&](GtkWidget *widget) { return GTK_IS_MENU_ITEM(widget) && shownText(widget) == label; });
}

std::vector<GtkWidget *> findWindows(const std::string &title)
{
    std::vector<GtkWidget *> found;
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    for (const GList *each = windows; each; each = each->next) {
        const char *const its = gtk_window_get_title(GTK_WINDOW(each->data));
        if (gtk_widget_get_visible(GTK_WIDGET(each->data)) && its && title == its)
            found.push_back(GTK_WIDGET(each->data));
    }
    return found;
}

GtkWidget *findWindow(const std::string &title)
{
    const std::vector<GtkWidget *> found = findWindows(title);
    return found.size() == 1 ? found.front() : nullptr;
}

std::string shownText(GtkWidget *widget)
{
    if (GTK_IS_LABEL(widget))
        return orEmpty(gtk_label_get_text(GTK_LABEL(widget)));
    if (GTK_IS_BUTTON(widget))
        return orEmpty(gtk_button_get_label(GTK_BUTTON(widget)));
    if (GTK_IS_MENU_ITEM(widget))
        return orEmpty(gtk_menu_item_get_label(GTK_MENU_ITEM(widget)));
    return "";
}

bool isShown(GtkWidget *widget)
{
    return widget && gtk_widget_is_visible(widget);
}

std::string describe(GtkWidget *root)
{
    std::string text;
    for (GtkWidget *const widget : allWidgets(root))
        if (GTK_IS_LABEL(widget) && isShown(widget))
            text += "\"" + shownText(widget) + "\" ";
    return text;
}
