#pragma once
// The common shape of the questions: how they look, what they report, which keys they ignore. Thread: main.

#include "src/main.h"

/// Builds a question of two buttons and one text; nothing is shown yet.
/// @param title, acceptLabel, rejectLabel  shown as given; borrowed
/// @param message                          looked up as a translation key, shown as plain text; borrowed
/// @return a modal dialog that answers GTK_RESPONSE_ACCEPT or GTK_RESPONSE_REJECT
GtkWidget *custom_dialog(const char *title, const char *acceptLabel, const char *rejectLabel, const char *message);

/// One attribute that lifts a whole text within its line. @param rise in Pango units. The caller unrefs the list.
PangoAttrList *getPangoLineAttr(int rise);

/// "configure-event": tells the agent where a dialog stands. @param key the dialog's kind. @return false.
gboolean get_window_coordinates(GtkWidget *widget, GdkEvent *event, const char *key);

/// "key-press-event": swallows, in a "normal" session, the keys that would answer a question.
/// @return true for a swallowed key
gboolean Key_Press(GtkWidget *widget, GdkEventKey *event, MainWindow *mainwindow);
