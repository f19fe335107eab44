#pragma once
// Chat texts on their way: from the agent to the view, from the keyboard to the agent.

#include "src/main.h"

/// Body of "Brindle-checkC": takes chat texts from `messageQueue` until "application-stop".
/// @param chatwindow  the `ChatWindow`
/// @return null
gpointer ChatParserfunc(gpointer chatwindow);
/// "key-release-event" of the input view: Return sends. @return false: the event goes on. Thread: main.
gboolean on_key_press(GtkWidget *widget, GdkEventKey *event, ChatWindow *chatwindow);
