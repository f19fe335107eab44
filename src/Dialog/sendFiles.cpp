// The customer chooses files; the agent is told which, and to whom they go. It does the copying and enforces the limit
// of 2 GiB: here it is only logged.

#include "src/Dialog/fileTransferDialogs.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogText.h"
#include "src/Dialog/questionDialog.h"
#include "src/Utils/dialogPlacement.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/localizationText.h"

#include <sys/stat.h>

char *g_receiverId = nullptr;

namespace
{
constexpr char chooserKind[] = "fileChooserDialog";
constexpr int sendResponse = 12;
constexpr gint64 largestFileBytes = 2147483648;

enum class FileCheck { good, unreadable, tooLarge };

/// Looks at a file, without following links, and logs what is wrong with it.
FileCheck checkFile(const char *path)
{
    struct stat status;
    if (lstat(path, &status) != 0) {
        UI_INFO_AS("DisplayList", "Errro getting file data");
        return FileCheck::unreadable;
    }
    if (gint64(status.st_size) <= largestFileBytes)
        return FileCheck::good;
    log_print(levelDebug, __LINE__, "DisplayList", "File : %s is greater than 2 gb", plainName(path).get());
    return FileCheck::tooLarge;
}

void appendPath(GString *text, const char *path)
{
    g_string_append_printf(text, " %s", escapePath(path).get());
}

void sendOneFile(const char *path, const char *receiverId)
{
    g_autoptr(GString) text = g_string_new("FileName");
    appendPath(text, path);
    checkFile(path);
    g_string_append_printf(text, " %s", receiverId);
    encodeDialogeResponseMessage(text->str, g_UiStatus);
}

/// The list is escaped as a whole once more: the agent takes it as one field.
void sendFolder(const GSList *files, const char *receiverId)
{
    g_autoptr(GString) text = g_string_new("FileName");
    bool goesOn = true;
    for (const GSList *file = files; file && goesOn; file = file->next) {
        const char *path = static_cast<const char *>(file->data);
        appendPath(text, path);
        goesOn = checkFile(path) != FileCheck::tooLarge;
    }
    g_autofree char *line = g_strdup_printf("%s %s %s\n", "zip_folder", escapePath(text->str).get(), receiverId);
    pipewriter(g_UiStatus, line);
}

GtkWidget *newFileChooser()
{
    GtkWidget *chooser =
        gtk_file_chooser_dialog_new(getString("Send File"), nullptr, GTK_FILE_CHOOSER_ACTION_OPEN, getString("Cancel"),
                                    GTK_RESPONSE_CANCEL, "Send ", sendResponse, nullptr);
    centreDialog(chooser);
    gtk_file_chooser_set_select_multiple(GTK_FILE_CHOOSER(chooser), TRUE);
    return chooser;
}
} // namespace

gboolean show_file_chooser_dialog(MainWindow *mainwindow)
{
    UI_ENTER();
    if (!claimKind(mainwindow, chooserKind, __func__))
        return FALSE;
    // A prompt for somebody else may come while the customer chooses: these files go to the one that was asked for.
    const OwnedText receiver = takeText(&mainwindow->mutex, g_receiverId);
    GtkWidget *chooser = newFileChooser();
    if (run_nested_dialog(GTK_DIALOG(chooser)) == sendResponse) {
        GSList *files = gtk_file_chooser_get_filenames(GTK_FILE_CHOOSER(chooser));
        DisplayList(files, mainwindow, receiver ? receiver.get() : "");
        g_slist_free_full(files, g_free);
    }
    gtk_widget_destroy(chooser);
    delete_active_dialog(mainwindow->active_dialogs, &mainwindow->mutex, chooserKind);
    return FALSE;
}

void DisplayList(const GSList *files, MainWindow *, const char *receiverId)
{
    UI_ENTER();
    if (!files)
        return;
    if (files->next)
        sendFolder(files, receiverId);
    else
        sendOneFile(static_cast<const char *>(files->data), receiverId);
}
