// The two callbacks that act on a widget alone.

#include "src/IdleThread/widgetCallbacks.h"

#include "Logger/logger.h"

gboolean destroyDialogBox(GtkWidget *dialog)
{
    UI_ENTER();
    UI_INFO("destroying dialog");
    if (dialog)
        gtk_widget_destroy(dialog);
    return G_SOURCE_REMOVE;
}

gboolean minimizeExpander(GtkWidget *widget)
{
    UI_ENTER();
    gtk_widget_hide(widget);
    return G_SOURCE_REMOVE;
}
