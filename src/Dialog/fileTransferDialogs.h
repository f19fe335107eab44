#pragma once
// Files to a technician and files from one: which, and where to. The agent does the copying. Thread: main.

#include "src/main.h"

/// Participant the next chosen files go to, owned; "-1" means everybody. Written under `MainWindow.mutex`; the send
/// dialog takes it over under the same lock.
extern char *g_receiverId;
/// The open receive dialog, or null.
extern GtkWidget *FtReceiveDialog;

/// State of one receive dialog; freed by its "destroy" handler.
struct DialogWindow {
    char *Path;             ///< folder that the files go to, owned
    GtkWidget *PathLabel;   ///< shows it
    InfoBar *infobarStruct; ///< the dialog's own notice, owned
};

/// Lets the customer choose files and tells the agent. @return false: runs once.
gboolean show_file_chooser_dialog(MainWindow *mainwindow);
/// Tells the agent which files go to whom; nothing when there are none.
/// @param files       paths, `char *`; borrowed
/// @param receiverId  borrowed
void DisplayList(const GSList *files, MainWindow *mainwindow, const char *receiverId);

/// Offers to save what `tempFT` names, in place of an open offer. @return false: runs once.
gboolean show_dialog_filetransfer(MainWindow *mainwindow);
/// "response" of the receive dialog.
void on_response_filetransfer(GtkDialog *dialog, int response, DialogWindow *window);
/// "clicked" of "Change Path": lets the customer choose another folder.
void ChangeFolder(GtkWidget *button, DialogWindow *window);
/// "destroy" of the receive dialog: frees its record.
void on_dialog_destroy(GtkWidget *dialog, DialogWindow *window);

/// Makes sure that a folder is there. @return a copy of the path, or null when it can't be used. Freed with g_free.
/// @param user  becomes the owner of a folder that is made here; null or empty: unusable
char *create_download_folder(const char *path, const char *user);
