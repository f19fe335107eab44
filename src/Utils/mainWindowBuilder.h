#pragma once
// Builds the control window.

#include "src/main.h"

/// Builds the window and fills the records; nothing is shown yet. @return 0.
/// Thread: main, once, before any other thread runs.
int createMainWindow(MainWindow *mainwindow, ChatWindow *chatwindow);
