#pragma once
// The controls of the main window that send a line to the agent. Thread: main.

#include "src/main.h"

/// Values of `MainWindow.StartButtonState`.
enum SharingState { starting = 0, sharing = 1, paused = 2 };

/// Pauses or resumes sharing; the button waits, insensitive, for the agent's report.
void on_start_clicked(GtkWidget *button, MainWindow *mainwindow);
/// Puts the picture on the start/stop button, and gives it the accessible name, that fit `StartButtonState`.
void showSharingButton(MainWindow *mainwindow);
/// Shows the technician's name in the status row, or a text while no name is known.
void showStatusText(MainWindow *mainwindow, const char *withoutName);
/// Asks the agent to open the product's web site.
void openWebsite(GtkWidget *menuItem, MainWindow *mainwindow);
/// Pops a menu up at the button that was clicked.
void showPopup(GtkWidget *settingsButton, GtkWidget *menu);
/// Opens the file chooser for files to every technician.
void onSendFilesClicked(GtkWidget *button, MainWindow *mainwindow);
/// The window's close button: asks whether to leave. @return true: the window stays.
gboolean on_window_main_delete(GtkWidget *window, GdkEvent *event, MainWindow *mainwindow);
