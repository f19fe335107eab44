#pragma once
// The two callbacks that act on a widget alone.

#include <gtk/gtk.h>

/// Destroys a dialog; an unset one is tolerated. Thread: main.
gboolean destroyDialogBox(GtkWidget *dialog);
/// Hides a widget. Thread: main.
gboolean minimizeExpander(GtkWidget *widget);
