#pragma once
// The questions that a technician's request or the window's close button raises, and their answers. What each asks,
// sends and logs stands in the table of `questionTable.cpp`. Thread: main.
// The show functions are one-shot callbacks: they return false.

#include "src/main.h"

/// Base64 text of the join message, owned; null when there is none. Written and taken over under `MainWindow.mutex`.
extern char *g_joinConfirmationMessage;
/// The open reboot question, or null; a reference is held.
extern GtkWidget *rebootConfirmationDialog;

/// What the script question needs.
struct ScriptRequest {
    MainWindow *mainwindow; ///< borrowed
    char *question;         ///< finished text, owned
    bool isNameless;        ///< the name in it shows nothing
};

/// Asks whether to join the session; uses the join message up.
gboolean show_userconfirmation_dialog(MainWindow *mainwindow);
/// Asks about one feature. @param record taken over by the dialog, freed when the feature's question is open already.
gboolean show_dialog_concent(UserConcent *record);
/// Asks whether to leave the session.
gboolean show_dialog_exit(MainWindow *mainwindow);
/// Asks for root-level access, or says under Wayland that there is none.
gboolean show_dialog_service(MainWindow *mainwindow);
/// Says that the admin mode is not supported.
gboolean ShowUnSupportedDialog(MainWindow *mainwindow);
/// Asks whether a script may run. @param request taken over.
gboolean show_dialog_script_launcher(ScriptRequest *request);
/// Asks whether the device may be configured for unattended access; takes `tempFT` over.
gboolean show_ursConfigure_prompt(MainWindow *mainwindow);
/// Asks whether to lock the screen, which ends the session under Wayland.
gboolean lock_wayland_dialog(MainWindow *mainwindow);
/// Asks whether the participant `demo_tech_access` may control the device.
gboolean show_dialog_transfer_control_demo(MainWindow *mainwindow);
/// Asks whether to reboot; the question goes away after 10 seconds.
gboolean show_rebootConfirmation_dialog(MainWindow *mainwindow);

/// The "response" handlers of the above, in their order.
void on_response(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_concent(GtkDialog *dialog, int response, UserConcent *record);
void on_response_exit(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_service(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_admin_mode_launcher(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_script_launcher(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_configure(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_LockScreenWayland(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_demo(GtkDialog *dialog, int response, MainWindow *mainwindow);
void on_response_rebootConfirmation(GtkDialog *dialog, int response, MainWindow *mainwindow);

/// "toggled" of "Remember this option".
void toggled_cb(GtkToggleButton *button, UserConcent *record);
/// "destroy" of the reboot question: gives the global's reference back.
void on_destroy_rebootConfirmation(GtkWidget *dialog, MainWindow *mainwindow);
