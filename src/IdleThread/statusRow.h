#pragma once
// The status row and the panel buttons, as the agent's reports change them.

#include "src/main.h"

/// The session shares: name or "In Session", online icon, button state 1. Thread: main.
gboolean ButtonChangeStart(MainWindow *mainwindow);
/// The session pauses: offline icon, button state 2. Thread: main.
gboolean ButtonChangeStop(MainWindow *mainwindow);
/// The agent lost its connection: offline icon and a notice. Thread: main.
gboolean noInternet(MainWindow *mainwindow);
/// The agent is connected again: online icon. Nothing schedules it. Thread: main.
gboolean Reconnected(MainWindow *mainwindow);
/// Shows or hides the chat, annotation and file transfer buttons as the permissions say. @return 0.
/// Thread: any; the widgets change on the main thread.
int customeRolesHandling(MainWindow *mainwindow);
