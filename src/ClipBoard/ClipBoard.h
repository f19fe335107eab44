#pragma once
// The customer's clipboard: new text is reported for the audit and asked about. Thread: main.

#include "src/main.h"

/// Arms the watch. Nothing calls it: consent is asked when the agent asks. @return 0.
int CallClipboard(MainWindow *mainwindow);
/// The clipboard has a new owner: asks for its text.
void ClipBoardText(GtkClipboard *clipboard, GdkEvent *event, MainWindow *mainwindow);
/// The clipboard's text has come. @param text null when there is none; borrowed.
void ClipBoardCallBackFunction(GtkClipboard *clipboard, const char *text, MainWindow *mainwindow);
