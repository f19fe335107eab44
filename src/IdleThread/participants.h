#pragma once
// The rows of the participants panel. The session status handler leaves name, ID and flag in the mailbox of
// `MainWindow.participants`; each callback takes over what it finds there.

#include "src/main.h"

/// Adds a row above the others. Thread: main.
gboolean AddParticipants(MainWindow *mainwindow);
/// Removes the row of an ID, letter case ignored. Thread: main.
gboolean DeleteParticipants(MainWindow *mainwindow);
/// Allows or forbids revoking control on the row of an ID. Thread: main.
gboolean ModifyParticipants(MainWindow *mainwindow);

/// Greys a menu entry out and hides its row's cursor, or the reverse. Thread: main.
void changeSensitive(GtkWidget *menuItem, GtkWidget *image, bool sensitive);
/// Asks the agent to swap screens with a participant. Thread: main.
void onswapScreenClick(GtkWidget *menuItem, const char *participantId);
/// Asks the agent to take control back from a participant. Thread: main.
void onRevokeControlClick(GtkWidget *menuItem, const char *participantId);
/// Name of a participant's row (a label's text, borrowed) by ID, letter case ignored; null when there is none.
/// Logs "iterating list" for each row it looks at. Thread: main.
const char *findParticipantName(const MainWindow *mainwindow, const char *participantId);
