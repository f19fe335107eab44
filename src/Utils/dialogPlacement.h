#pragma once
// The registry that keeps a kind of dialog from opening twice, and where secondary windows go on the screen.

#include "src/main.h"

// ------------------------------------------------------------------------------------------------ registry
// Kinds are compared without regard to ASCII case. The list begins with an entry that is never removed, so its head
// never changes.

/// @param list   `MainWindow.active_dialogs`
/// @param mutex  `MainWindow.mutex`, or null when the caller holds it
/// @return 1 when a dialog of this kind is open, else 0. Thread: any.
int is_dialog_active(GList *list, GMutex *mutex, const char *kind);

/// Notes that a dialog opens. @param kind copied. @return 1, or 0 when one of this kind is open. Thread: any.
int add_active_dialog(GList *list, GMutex *mutex, const char *kind);

/// Notes that a dialog has gone and tells the agent "delete_dialog", whether it was noted or not. @return 1.
/// Thread: any; the lock is not held while the line is sent.
int delete_active_dialog(GList *list, GMutex *mutex, const char *kind);

// ----------------------------------------------------------------------------------------------- placement

struct Size {
    int width, height;
};
struct Rect {
    int x, y, width, height;
};
/// Where a dialog goes; without a fit it is (0, 0).
struct Place {
    enum class Fit { above, below, centred, none } fit;
    int x, y;
};

/// Decides the place of a dialog: above its parent, else below it, else in the middle of the screen. All in pixels.
Place placeDialog(const Rect &parent, const Size &dialog, const Size &screen);

/// Size of the default screen in application pixels. Thread: main.
Size readScreenSize();

/// Reads a window's position. @return 1, or 0 with (0, 0) for a window that is not realized. Thread: main.
int get_window_position(GtkWidget *window, int *x, int *y);

/// Reads where a dialog should go beside its parent. @return 1, or 0 with (0, 0). Thread: main.
/// @param parent  may be null
int choose_dialog_position(GtkWidget *parent, GtkWidget *dialog, int *x, int *y);

/// Moves a dialog. Thread: main.
void set_dialog_position(GtkWidget *dialog, int x, int y);

/// Chooses and moves; a dialog without a place goes to (0, 0). @return as `choose_dialog_position`. Thread: main.
int position_dialog(GtkWidget *parent, GtkWidget *dialog);
