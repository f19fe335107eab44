#pragma once
// The question whether the technician may read the clipboard. Thread: main.

#include "src/main.h"

/// The open question, or null.
extern GtkWidget *clipboardPermissionDialog;

/// Notes the text that waits for permission and asks, unless the question is open already.
/// @param text  copied; may be `MainWindow.clip_Board_Text` itself
void show_clipboardPermission_dialog(MainWindow *mainwindow, const char *text);

/// "response" of the question.
void on_response_clipboardPermission(GtkDialog *dialog, int response, MainWindow *mainwindow);
/// "destroy" of the question, after an answer too: tells the agent "clipboard 3", once for each dialog.
void on_destroy_clipboardPermission(GtkWidget *dialog, MainWindow *mainwindow);
