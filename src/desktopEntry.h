#pragma once
// The desktop entry that makes a running session show up in the desktop's lists. Thread: main.

#include "src/main.h"

/// Writes the entry. @param name file name without its ending; borrowed. Trouble is logged.
void create_desktop_file(const char *name, const MainWindow *mainWindow);
/// Deletes the entry. Trouble is logged.
void delete_desktop_file(const char *name, const MainWindow *mainWindow);
