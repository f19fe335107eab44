// A technician offers files: the customer says where they go, or not at all. A newer offer takes the place of an open
// one, which then sends nothing.

#include "src/Dialog/fileTransferDialogs.h"

#include "Logger/logger.h"
#include "src/Dialog/activeuser.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogText.h"
#include "src/IdleThread/infoBar.h"
#include "src/Utils/dialogPlacement.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/localizationText.h"

#include <cstdlib>
#include <cstring>
#include <utility>
#include <unistd.h>

GtkWidget *FtReceiveDialog = nullptr;

namespace
{
constexpr int saveResponse = 1;
constexpr int widthPx = 250, heightPx = 75;
constexpr guint labelPaddingPx = 5, rowPaddingPx = 3;
constexpr int rowSpacingPx = 5;
/// A path of more characters is shortened on the screen.
constexpr int longPathCharacters = 50;
constexpr size_t longestPathBytes = 4096;

/// A place for files of nobody in particular.
constexpr char fallbackPath[] = "/tmp";
constexpr char fallbackFolder[] = "/tmp/";

/// False for a name that would lead out of the homes' folder.
bool isPlainName(const char *user)
{
    return !strchr(user, '/') && strcmp(user, ".") != 0 && strcmp(user, "..") != 0;
}

/// The downloads folder of whoever sits at the machine, made when it is missing; else the folder for everybody.
OwnedText chooseDownloadFolder()
{
    char *user = getActiveUser();
    UI_INFO_AS("show_dialog_filetransfer", "Active user is %s", user ? plainName(user).get() : "NULL");
    char path[longestPathBytes] = {};
    if (user)
        g_snprintf(path, sizeof path, "/home/%s/Downloads", user);
    else
        g_strlcpy(path, fallbackPath, sizeof path);
    OwnedText folder(user && !isPlainName(user) ? nullptr : create_download_folder(path, user));
    free(user);
    return folder ? std::move(folder) : OwnedText(g_strdup(fallbackFolder));
}

/// Shows a folder; one that would make the dialog wide loses its middle, which the tooltip keeps.
void setFolder(DialogWindow *window, const char *folder)
{
    replace_text(window->Path, folder);
    const OwnedText shown = displayable_text(folder);
    const bool isLong = g_utf8_strlen(shown.get(), -1) > longPathCharacters;
    gtk_label_set_text(GTK_LABEL(window->PathLabel), shown.get());
    gtk_label_set_ellipsize(GTK_LABEL(window->PathLabel), isLong ? PANGO_ELLIPSIZE_MIDDLE : PANGO_ELLIPSIZE_NONE);
    gtk_label_set_width_chars(GTK_LABEL(window->PathLabel), isLong ? longPathCharacters : -1);
    gtk_widget_set_tooltip_text(window->PathLabel, isLong ? shown.get() : nullptr);
}

DialogWindow *newDialogWindow(MainWindow *mainwindow)
{
    auto *window = g_new0(DialogWindow, 1);
    window->Path = g_strdup(mainwindow->homeDir);
    window->infobarStruct = new InfoBar{};
    window->infobarStruct->mainWindow = mainwindow->window;
    window->infobarStruct->infoBar = gtk_info_bar_new();
    window->infobarStruct->infoBarLabel = gtk_label_new("");
    gtk_info_bar_set_message_type(GTK_INFO_BAR(window->infobarStruct->infoBar), GTK_MESSAGE_ERROR);
    return window;
}

GtkWidget *newFolderRow(DialogWindow *window)
{
    GtkWidget *row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, rowSpacingPx);
    window->PathLabel = gtk_label_new(displayable_text(window->Path).get());
    GtkWidget *button = gtk_button_new_with_label(getString("Change Path"));
    connect_nested_click(button, ChangeFolder, window);
    gtk_box_pack_start(GTK_BOX(row), window->PathLabel, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(row), button, FALSE, FALSE, 0);
    return row;
}

GtkWidget *newReceiveContent(DialogWindow *window, GtkWidget *list)
{
    GtkWidget *bar = window->infobarStruct->infoBar;
    gtk_container_add(GTK_CONTAINER(gtk_info_bar_get_content_area(GTK_INFO_BAR(bar))),
                      window->infobarStruct->infoBarLabel);
    GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_name(box, "receiveBox");
    gtk_box_pack_start(GTK_BOX(box), scrolledWhenLong(list), TRUE, TRUE, labelPaddingPx);
    gtk_box_pack_end(GTK_BOX(box), newFolderRow(window), FALSE, FALSE, rowPaddingPx);
    GtkWidget *outerBox = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_add(GTK_CONTAINER(outerBox), bar);
    gtk_container_add(GTK_CONTAINER(outerBox), box);
    return outerBox;
}

/// Brings the dialog's corner into the screen's. Its gravity makes the position that of the corner.
void moveToCorner(GtkWidget *dialog)
{
    Size size = {};
    gtk_window_get_size(GTK_WINDOW(dialog), &size.width, &size.height);
    const Size screen = readScreenSize();
    gtk_window_move(GTK_WINDOW(dialog), screen.width - size.width, screen.height - size.height);
}

GtkWidget *newReceiveDialog()
{
    GtkWidget *dialog = newQuestionWindow(getString("Receive File"));
    addAnswer(dialog, getString("Cancel"), GTK_RESPONSE_NONE);
    gtk_window_set_gravity(GTK_WINDOW(dialog), GDK_GRAVITY_SOUTH_EAST);
    moveToCorner(dialog);
    addAcceptAnswer(dialog, "Save", saveResponse);
    gtk_widget_set_size_request(dialog, widthPx, heightPx);
    gtk_window_set_default_size(GTK_WINDOW(dialog), widthPx, heightPx);
    return dialog;
}

void closeOpenOffer()
{
    if (GtkWidget *dialog = std::exchange(FtReceiveDialog, nullptr))
        gtk_widget_destroy(dialog);
}

bool mayUse(const char *folder)
{
    return folder && access(folder, R_OK | W_OK | X_OK) == 0;
}

/// Takes the folder over, or says in the dialog that it can't be used.
void takeFolder(DialogWindow *window, const char *folder)
{
    if (mayUse(folder)) {
        setFolder(window, folder);
        return;
    }
    UI_INFO_AS("ChangeFolder", "You Dont Have access");
    startInfoBar(window->infobarStruct, getString("You don't have enough privilege to access the file"));
}
} // namespace

gboolean show_dialog_filetransfer(MainWindow *mainwindow)
{
    UI_ENTER();
    closeOpenOffer();
    encodeMonitorMessage("fileTransferRecive", g_UiStatus);
    DialogWindow *window = newDialogWindow(mainwindow);
    const OwnedText line = takeText(&mainwindow->mutex, mainwindow->tempFT);
    GtkWidget *dialog = newReceiveDialog();
    FtReceiveDialog = dialog;
    GtkWidget *list = newAskingLabel(dialog, listOfferedFiles(line.get()).get(), saveResponse, longestListRoom);
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), newReceiveContent(window, list));
    setFolder(window, chooseDownloadFolder().get());
    UI_INFO("Download path is %s", plainName(window->Path).get());
    showOnRefusal(dialog, GTK_RESPONSE_NONE);
    gtk_widget_hide(window->infobarStruct->infoBar);
    moveToCorner(dialog); // only now its size is known
    connect_signal(dialog, "response", on_response_filetransfer, window);
    connect_signal(dialog, "destroy", on_dialog_destroy, window);
    return FALSE;
}

void on_response_filetransfer(GtkDialog *dialog, int response, DialogWindow *window)
{
    UI_ENTER();
    if (response == saveResponse) {
        g_autofree char *text = g_strdup_printf("%s %s", "FTAccept", escapePath(window->Path).get());
        encodeDialogeResponseMessage(text, g_UiStatus);
        UI_INFO("File Transfer Accepted to path: %s", plainName(window->Path).get());
    } else {
        encodeDialogeResponseMessage("FTCancel", g_UiStatus);
    }
    gtk_widget_destroy(GTK_WIDGET(dialog));
}

void ChangeFolder(GtkWidget *button, DialogWindow *window)
{
    UI_ENTER();
    GtkWidget *dialog = gtk_widget_get_toplevel(button);
    // A newer offer may take the dialog away while the customer chooses.
    connect_signal(dialog, "destroy", gtk_widget_destroyed, &dialog);
    GtkWidget *chooser = gtk_file_chooser_dialog_new(
        getString("Open File"), nullptr, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, getString("Cancel"),
        GTK_RESPONSE_CANCEL, getString("Open"), GTK_RESPONSE_ACCEPT, nullptr);
    centreDialog(chooser);
    const bool isChosen = run_nested_dialog(GTK_DIALOG(chooser)) == GTK_RESPONSE_ACCEPT;
    if (isChosen && dialog) {
        g_autofree char *folder = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(chooser));
        takeFolder(window, folder);
    }
    if (dialog)
        g_signal_handlers_disconnect_by_data(dialog, &dialog);
    encodeMonitorMessage("fileTransferSend", g_UiStatus);
    gtk_widget_destroy(chooser);
}

void on_dialog_destroy(GtkWidget *dialog, DialogWindow *window)
{
    UI_ENTER();
    if (FtReceiveDialog == dialog)
        FtReceiveDialog = nullptr;
    freeInfoBar(window->infobarStruct);
    g_free(window->Path);
    g_free(window);
}
