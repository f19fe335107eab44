#pragma once
// The control window on a screen that has not the room for all it can show.

#include "src/main.h"

/// Keeps the window within the height of its monitor's work area: panels that have no room there scroll, under the
/// toolbar, which stays. With room, nothing changes. Thread: main, once, when the window is built.
/// @param actionBox  holds the toolbar, the panels and the closing separator
void scrollWithoutRoom(const MainWindow *mainwindow, GtkWidget *actionBox);
