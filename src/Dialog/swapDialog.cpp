// The customer waits for the technician to agree to a swap of screens. Cancel gives the request up; an outcome closes
// the dialog without an answer, and its kind then stays registered, so that no second request is shown in this session.

#include "src/Dialog/swapDialog.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogText.h"
#include "src/Dialog/questionDialog.h"
#include "src/IdleThread/widgetCallbacks.h"
#include "src/Utils/dialogPlacement.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/localizationText.h"

GtkWidget *swapDialog = nullptr;
char *swapTechnicianName = nullptr;

namespace
{
constexpr char swapKind[] = "initswap";
constexpr int contentSpacingPx = 5;
constexpr int spinnerMarginPx = 10;
constexpr int labelMarginPx = 20;

OwnedText waitingText(MainWindow *mainwindow)
{
    OwnedText name;
    {
        const MutexLock lock(&mainwindow->mutex);
        name.reset(g_strdup(mainwindow->Techname ? mainwindow->Techname : "(null)"));
    }
    name = plainName(name.get());
    const OwnedText text(g_strdup_printf(getString(" Requesting %s to share screen          "), name.get()));
    bool wasCut = false;
    return cutToReadable(text.get(), &wasCut);
}

GtkWidget *newWaitingContent(const char *text)
{
    GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, contentSpacingPx);
    GtkWidget *spinner = gtk_spinner_new();
    g_object_set(spinner, "margin", spinnerMarginPx, nullptr);
    gtk_spinner_start(GTK_SPINNER(spinner));
    GtkWidget *label = gtk_label_new(text);
    g_object_set(label, "margin", labelMarginPx, nullptr);
    wrapLabel(label);
    gtk_container_add(GTK_CONTAINER(box), spinner);
    gtk_container_add(GTK_CONTAINER(box), scrolledWhenLong(label));
    return box;
}
} // namespace

void closeSwapDialog()
{
    destroyDialogBox(swapDialog);
}

gboolean show_swapscreen_dialog(MainWindow *mainwindow)
{
    UI_ENTER();
    if (!claimKind(mainwindow, swapKind, __func__))
        return FALSE;
    const OwnedText text = waitingText(mainwindow);
    GtkWidget *dialog = newQuestionWindow("");
    gtk_widget_set_name(dialog, "swapDialogbox");
    // Without a title of its own the window is announced by what it says.
    g_autofree char *name = g_strstrip(g_strdup(text.get()));
    atk_object_set_name(gtk_widget_get_accessible(dialog), name);
    addAnswer(dialog, getString("Cancel"), GTK_RESPONSE_REJECT);
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), newWaitingContent(text.get()));
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    swapDialog = dialog;
    connect_signal(dialog, "destroy", gtk_widget_destroyed, &swapDialog);
    centreDialog(dialog);
    guardFromKeyboard(dialog, mainwindow);
    reportPosition(dialog, swapKind);
    connect_signal(dialog, "response", on_response_swap, mainwindow);
    gtk_widget_show_all(dialog);
    return FALSE;
}

void on_response_swap(GtkDialog *dialog, int, MainWindow *mainwindow)
{
    UI_ENTER();
    encodeDialogeResponseMessage("swapRejected", g_UiStatus);
    delete_active_dialog(mainwindow->active_dialogs, &mainwindow->mutex, swapKind);
    gtk_widget_destroy(GTK_WIDGET(dialog));
}
