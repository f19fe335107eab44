// May the technician read the clipboard? There is no refusing button: refusing is closing the dialog. The agent gets
// "clipboard 1" or "clipboard 2" for an answer, and "clipboard 3" whenever the dialog has gone.

#include "src/Dialog/clipboardDialog.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogShape.h"
#include "src/Utils/dialogPlacement.h"
#include "src/Utils/pipeTransport.h"

GtkWidget *clipboardPermissionDialog = nullptr;

namespace
{
constexpr char kind[] = "clipboardDialog";
} // namespace

void show_clipboardPermission_dialog(MainWindow *mainwindow, const char *text)
{
    UI_ENTER();
    replace_text(mainwindow->clip_Board_Text, text);
    if (clipboardPermissionDialog) {
        UI_INFO("dialog box already running");
        return;
    }
    if (!add_active_dialog(mainwindow->active_dialogs, &mainwindow->mutex, kind))
        UI_INFO("window already exists"); // the variable above is what keeps a second one away
    GtkWidget *dialog = custom_dialog("Clipboard Permission", "Allow always", "Allow once",
                                      "Do you want your Technician to access your system Clipboard");
    clipboardPermissionDialog = dialog;
    listenToStructure(mainwindow);
    centreDialog(dialog);
    guardFromKeyboard(dialog, mainwindow);
    reportPosition(dialog, kind);
    connect_signal(dialog, "response", on_response_clipboardPermission, mainwindow);
    connect_signal(dialog, "destroy", on_destroy_clipboardPermission, mainwindow);
    showOnRefusal(dialog, GTK_RESPONSE_CANCEL); // no button refuses: "Allow once" grants, too
}

void on_response_clipboardPermission(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    if (response == GTK_RESPONSE_ACCEPT) {
        UI_INFO("User accepted Clipboard always");
        mainwindow->allowClipboardAlways = true;
        pipewriter(g_UiStatus, "clipboard 1\n");
    } else if (response == GTK_RESPONSE_REJECT) {
        UI_INFO("User accepted Clipboard once");
        pipewriter(g_UiStatus, "clipboard 2\n");
        if (g_strcmp0(g_getenv("XDG_SESSION_TYPE"), "wayland") == 0) // this exact spelling only
            mainwindow->ClipPermissionCount = 1;
    }
    gtk_widget_destroy(GTK_WIDGET(dialog));
    delete_active_dialog(mainwindow->active_dialogs, &mainwindow->mutex, kind);
}

void on_destroy_clipboardPermission(GtkWidget *dialog, MainWindow *)
{
    UI_ENTER();
    if (clipboardPermissionDialog != dialog)
        return;
    clipboardPermissionDialog = nullptr;
    pipewriter(g_UiStatus, "clipboard 3\n");
}
