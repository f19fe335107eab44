// Placement of secondary windows. What goes where is decided in `placeDialog`, from numbers alone; the functions
// around it read the numbers from the windows and move them.

#include "src/Utils/dialogPlacement.h"

#include "Logger/logger.h"

#include <algorithm>

namespace
{

constexpr int gapPx = 10;

int centreOn(const Rect &parent, int dialogWidth, int screenWidth)
{
    const int centred = std::max((parent.width - dialogWidth) / 2 + parent.x, 0);
    return centred + dialogWidth > screenWidth ? screenWidth - dialogWidth : centred;
}

bool isWindow(GtkWidget *window)
{
    return window && GTK_IS_WINDOW(window);
}

/// The parent with the decoration of the window manager, or without where that is not known.
Rect readParentRect(GtkWidget *parent, int x, int y)
{
    Rect rect = {x, y, 0, 0};
    gtk_window_get_size(GTK_WINDOW(parent), &rect.width, &rect.height);
    GdkWindow *const gdkWindow = gtk_widget_get_window(parent);
    if (!gdkWindow || !gtk_widget_get_realized(parent)) {
        UI_INFO_AS("choose_dialog_position", "GdkWindow not available, using window position: pos(%d,%d) size(%dx%d)",
                   rect.x, rect.y, rect.width, rect.height);
        return rect;
    }
    GdkRectangle frame = {};
    gdk_window_get_frame_extents(gdkWindow, &frame);
    if (frame.width > 0 && frame.height > 0) {
        rect = {frame.x, frame.y, frame.width, frame.height};
        UI_INFO_AS("choose_dialog_position", "Using frame extents: pos(%d,%d) size(%dx%d)", rect.x, rect.y, rect.width,
                   rect.height);
    } else {
        UI_INFO_AS("choose_dialog_position",
                   "Frame extents invalid, usingtk_widget_get_windowg window position: pos(%d,%d) size(%dx%d)", rect.x,
                   rect.y, rect.width, rect.height);
    }
    return rect;
}

void logPlace(const Place &place)
{
    switch (place.fit) {
    case Place::Fit::above:
        UI_INFO_AS("choose_dialog_position", "Placing dialog above parent at (%d,%d)", place.x, place.y);
        break;
    case Place::Fit::below:
        UI_INFO_AS("choose_dialog_position", "Placing dialog below parent at (%d,%d)", place.x, place.y);
        break;
    case Place::Fit::centred:
        UI_INFO_AS("choose_dialog_position", "Centering dialog on screen at (%d,%d)", place.x, place.y);
        break;
    case Place::Fit::none:
        UI_INFO_AS("choose_dialog_position", "Using fallback position (0,0) - no suitable space found");
        break;
    }
}

/// Where a dialog goes beside a parent that may be missing or not on the screen.
Place findPlace(GtkWidget *parent, const Size &dialog, const Size &screen)
{
    int x = 0, y = 0;
    if (!parent || !get_window_position(parent, &x, &y))
        return {Place::Fit::none, 0, 0};
    return placeDialog(readParentRect(parent, x, y), dialog, screen);
}

} // namespace

Place placeDialog(const Rect &parent, const Size &dialog, const Size &screen)
{
    const int x = centreOn(parent, dialog.width, screen.width);
    const int above = parent.y - dialog.height - gapPx;
    if (above >= 0)
        return {Place::Fit::above, x, above};
    const int below = parent.y + parent.height + gapPx;
    if (below + dialog.height <= screen.height)
        return {Place::Fit::below, x, below};
    if (dialog.height > screen.height)
        return {Place::Fit::none, 0, 0};
    return {Place::Fit::centred, x, (screen.height - dialog.height) >> 1};
}

Size readScreenSize()
{
    GdkScreen *const screen = gdk_screen_get_default();
    if (!screen)
        return {0, 0};
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    return {gdk_screen_get_width(screen), gdk_screen_get_height(screen)};
    G_GNUC_END_IGNORE_DEPRECATIONS
}

int get_window_position(GtkWidget *window, int *x, int *y)
{
    UI_ENTER();
    if (!isWindow(window)) {
        UI_INFO("Invalid window pointer");
        return 0;
    }
    if (!x || !y) {
        UI_INFO("Invalid coordinate pointers");
        return 0;
    }
    if (!gtk_widget_get_realized(window)) {
        UI_INFO("Window is not realized yet");
        *x = *y = 0;
        return 0;
    }
    gtk_window_get_position(GTK_WINDOW(window), x, y);
    UI_INFO("Window position: x=%d, y=%d", *x, *y);
    return 1;
}

int choose_dialog_position(GtkWidget *parent, GtkWidget *dialog, int *x, int *y)
{
    UI_ENTER();
    if (!x || !y) {
        UI_INFO("Invalid coordinate pointers");
        return 0;
    }
    *x = *y = 0;
    if (!isWindow(dialog)) {
        UI_INFO("Invalid dialog window pointer");
        return 0;
    }
    Size size = {};
    gtk_window_get_size(GTK_WINDOW(dialog), &size.width, &size.height);
    if (!gdk_screen_get_default()) {
        UI_INFO("Could not get default screen");
        return 0;
    }
    const Size screen = readScreenSize();
    UI_INFO("Screen dimensions: %dx%d", screen.width, screen.height);
    UI_INFO("Dialog dimensions: %dx%d", size.width, size.height);
    const Place place = findPlace(parent, size, screen);
    logPlace(place);
    *x = place.x;
    *y = place.y;
    return place.fit != Place::Fit::none;
}

void set_dialog_position(GtkWidget *dialog, int x, int y)
{
    UI_ENTER();
    if (!isWindow(dialog)) {
        UI_INFO("Invalid dialog window pointer");
        return;
    }
    gtk_window_move(GTK_WINDOW(dialog), x, y);
    UI_INFO("Dialog positioned at (%d,%d)", x, y);
}

int position_dialog(GtkWidget *parent, GtkWidget *dialog)
{
    UI_ENTER();
    if (!isWindow(dialog)) {
        UI_INFO("Invalid dialog window pointer");
        return 0;
    }
    int x = 0, y = 0;
    const int found = choose_dialog_position(parent, dialog, &x, &y);
    set_dialog_position(dialog, x, y);
    return found;
}
