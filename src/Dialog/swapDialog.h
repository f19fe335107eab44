#pragma once
// The waiting dialog of a request to see the technician's screen. Thread: main.

#include "src/main.h"

/// The open waiting dialog, or null.
extern GtkWidget *swapDialog;
/// Technician named by the last "initswap" prompt, owned; not shown. Under `MainWindow.mutex`.
extern char *swapTechnicianName;

/// Shows the waiting dialog. @return false: runs once.
gboolean show_swapscreen_dialog(MainWindow *mainwindow);
/// Closes the waiting dialog without an answer; its kind stays registered. Only logs when there is none.
void closeSwapDialog();

/// "response" of the waiting dialog: any of them gives the request up.
void on_response_swap(GtkDialog *dialog, int response, MainWindow *mainwindow);
