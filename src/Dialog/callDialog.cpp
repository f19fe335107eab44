// The invitation to a call. At most one is open; it is answered by its buttons or its frame, and goes away without an
// answer by time, by a newer invitation, or when the technician takes it back.

#include "src/Dialog/callDialog.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogShape.h"
#include "src/IdleThread/widgetCallbacks.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"

GtkWidget *audioVideoDialog = nullptr;

namespace
{
constexpr guint invitationMs = 180000;

/// Closes an answered invitation, one that is no longer the open one too.
void closeAnswered(GtkWidget *dialog)
{
    keepOpen(dialog);
    gtk_widget_destroy(dialog);
}
} // namespace

void closeCallDialog()
{
    if (audioVideoDialog)
        destroyDialogBox(audioVideoDialog);
}

void show_audio_video_recive(MainWindow *mainwindow, const char *)
{
    UI_ENTER();
    closeCallDialog(); // at most one is open, whoever asks
    GtkWidget *dialog = custom_dialog("Video/Voice call", "Accept", "Reject",
                                      "Would you like to accept your technician's voice/ \nvideo chat invite?"
                                      "                                ");
    audioVideoDialog = GTK_WIDGET(g_object_ref(dialog));
    closeAfter(dialog, invitationMs);
    UI_INFO("Prompting dialog box");
    centreDialog(dialog);
    showOnRefusal(dialog);
    connect_signal(dialog, "destroy", on_response_AudioVideo, mainwindow);
    connect_signal(dialog, "delete-event", on_response_delete_AudioVideo, mainwindow);
    connect_signal(dialog, "response", response_AudioVideo, mainwindow);
}

void response_AudioVideo(GtkDialog *dialog, int response, MainWindow *)
{
    UI_ENTER();
    if (response == GTK_RESPONSE_ACCEPT) {
        encodeDialogeResponseMessage("AVAccept", g_UiStatus);
        UI_INFO("User accepted video call");
    } else {
        encodeDialogeResponseMessage("AVReject", g_UiStatus);
        UI_INFO("User rejected video call");
    }
    closeAnswered(GTK_WIDGET(dialog));
}

gboolean on_response_delete_AudioVideo(GtkWidget *dialog, GdkEvent *, MainWindow *)
{
    UI_ENTER();
    UI_DEBUG("received Widget delete event");
    if (audioVideoDialog != dialog)
        return FALSE;
    encodeDialogeResponseMessage("AVReject", g_UiStatus);
    closeAnswered(dialog);
    return TRUE;
}

void on_response_AudioVideo(GtkWidget *dialog, MainWindow *)
{
    UI_ENTER();
    UI_DEBUG("received Widget destroy");
    if (audioVideoDialog != dialog)
        return;
    audioVideoDialog = nullptr;
    g_object_unref(dialog);
}
