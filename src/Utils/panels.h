#pragma once
// The four collapsible panels, scaled icons, and margins by whichever function the GTK at hand has. Thread: main.

#include "src/main.h"
#include "src/support.h"

/// Called after a header was clicked.
using ToggleCallback = void (*)(MainWindow *mainwindow);

/// What a header's click needs; lives as long as the header.
struct ExpanderCallbackData {
    CustomExpander *customexpander;
    MainWindow *mainwindow;
    ToggleCallback callback; ///< may be null
};

/// What a panel is built from.
struct PanelParts {
    const char *title;       ///< translated
    const char *rightImage;  ///< image file of the header's right-hand button, or null: no such button
    CustomExpander *header;  ///< filled
    GtkWidget *content;      ///< shown and hidden by the header; the panel takes it
    ToggleCallback callback; ///< may be null
};

/// Builds a panel of a clickable header and its content; the content is closed. @return the panel's vertical box.
GtkWidget *createExapnder(const PanelParts &parts, MainWindow *mainwindow);

/// A header was clicked: shows or hides its content. @return false: the event goes on.
gboolean ExpanderCallback(GtkWidget *widget, GdkEventButton *event, ExpanderCallbackData *data);
/// Shows the notice of the participants panel while nobody is there.
void participantsExpandCallback(MainWindow *mainwindow);
/// Shows Send File, or with two or more technicians the notice.
void fileTransferExpandCallback(MainWindow *mainwindow);

/// Handlers of the toolbar buttons.
void expandParticipantsWidget(GtkWidget *button, MainWindow *mainwindow);
void expandWidget(GtkWidget *button, MainWindow *mainwindow);
void expandFileTransfer(GtkWidget *button, MainWindow *mainwindow);

/// Sets a header's arrow.
void setArrow(CustomExpander *header, bool open, GtkIconSize size);
/// Shrinks or grows the main window to what it shows.
void resizeMainWindow(GtkWidget *window);

/// An image scaled to a square; empty when the file can't be read. Crisp at scale factor 2.
/// @param sizePx, marginPx  application pixels
GtkWidget *resizeImages(const char *path, int sizePx, int marginPx);
/// An image in its natural size; the "@2x" file beside it is used at scale factor 2.
GtkWidget *newImageFromFile(const char *path);
/// Puts a file's picture into an image; as `newImageFromFile`.
void setImageFromFile(GtkWidget *image, const char *path);

/// At scale factor 2 the path where the double size of "play.png" may be, "play@2x.png"; else null.
OwnedText doubleSizePath(const char *path);
/// An image that plays an animation while it is on the screen; as `newImageFromFile`.
GtkWidget *newAnimatedImage(const char *path);
/// Data of an animated image: the timer that shows its next frame, 0 while it is hidden.
inline constexpr char frameTimerKey[] = "frame-timer";

/// Has a label show any text in one line of the room there is; the text itself stays whole.
void makeOneLine(GtkWidget *label);
/// Lets assistive technology announce a picture that stands beside a text under that text.
void labelPicture(GtkWidget *picture, GtkWidget *label);

/// Sets the margins that are not negative, in pixels.
void set_widget_margins(GtkWidget *widget, int start, int end, int top, int bottom);
/// Sets the margins of the status row. @return 0.
int setDepricatedApis(MainWindow *mainwindow);
/// Starts dragging the window of a widget with button 1. Nothing connects it. @return true.
gboolean on_button_press(GtkWidget *widget, GdkEventButton *event, GtkWidget *anyWidget);
