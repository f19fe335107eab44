// The transcript: every message of both directions appends one entry to `chatData`, in place, and the save button
// writes header and conversation into a folder of the customer's choice.

#include "src/Chat/chatTranscript.h"

#include "Logger/logger.h"
#include "src/IdleThread/infoBar.h"
#include "src/localizationText.h"
#include "src/lostDisplay.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace
{

constexpr mode_t transcriptMode = 0666;

constexpr char starLines[] =
    "*********************************************************************************************\n"
    "*********************************************************************************************\n";

const char *textOrNull(const char *message)
{
    return message ? message : "(null)";
}

GString *conversation(ChatWindow *chatwindow)
{
    if (!chatwindow->chatData)
        chatwindow->chatData = g_string_new(nullptr);
    return chatwindow->chatData;
}

void appendShortEntry(ChatWindow *chatwindow, const char *message)
{
    g_string_append_printf(conversation(chatwindow), "\n  \t\t\t %s", textOrNull(message));
}

/// @return false when the callback is on its way already: one is enough for a burst.
bool takeButtonTurn(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    return !std::exchange(chatwindow->isButtonScheduled, true);
}

void endButtonTurn(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    chatwindow->isButtonScheduled = false;
}

gboolean makeButtonUsable(ChatWindow *chatwindow)
{
    endButtonTurn(chatwindow);
    if (chatwindow->chatExpander && chatwindow->chatExpander->rightButton)
        gtk_widget_set_sensitive(chatwindow->chatExpander->rightButton, true);
    return G_SOURCE_REMOVE;
}

/// The key is not written for these kinds of sessions.
void forgetSessionKey(ChatWindow *chatwindow)
{
    if (g_strcmp0(chatwindow->sessionType, "normal") != 0 && g_strcmp0(chatwindow->sessionType, "ras") != 0)
        return;
    const MutexLock lock(&chatwindow->mutex);
    replace_text(chatwindow->sessionKey, "");
}

GtkWidget *newFolderDialog()
{
    GtkWidget *const dialog = gtk_file_chooser_dialog_new(
        getString("Save Chat Transcript"), nullptr, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, getString("Cancel"),
        GTK_RESPONSE_CANCEL, getString("Open"), GTK_RESPONSE_ACCEPT, nullptr);
    gtk_window_set_gravity(GTK_WINDOW(dialog), GDK_GRAVITY_CENTER);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    return dialog;
}

/// The folder that the customer picked; null when the question was cancelled, "" when the pick is no local folder.
OwnedText askForFolder()
{
    GtkWidget *const dialog = newFolderDialog();
    OwnedText folder;
    if (run_nested_dialog(GTK_DIALOG(dialog)) == GTK_RESPONSE_ACCEPT) {
        folder.reset(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog)));
        if (!folder)
            folder.reset(g_strdup(""));
    }
    gtk_widget_destroy(dialog);
    return folder;
}

bool writeAll(int file, const char *bytes, gsize length)
{
    while (length > 0) {
        const ssize_t written = write(file, bytes, length);
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0) {
            bytes += written;
            length -= gsize(written);
        }
    }
    return true;
}

/// Header and conversation as they are now.
GString *copyTranscript(ChatWindow *chatwindow)
{
    struct tm today;
    time_data(&today);
    const MutexLock lock(&chatwindow->mutex);
    const OwnedText header = transcriptHeader(today, chatwindow->sessionKey, chatwindow->sessionType);
    GString *const transcript = g_string_new(header.get());
    if (chatwindow->chatData)
        g_string_append_len(transcript, chatwindow->chatData->str, gssize(chatwindow->chatData->len));
    return transcript;
}

/// In a folder that others may write to, a link that the customer has not made leads where somebody else wants.
bool isTrap(const char *path)
{
    g_autofree char *folder = g_path_get_dirname(path);
    struct stat link, place;
    return lstat(path, &link) == 0 && S_ISLNK(link.st_mode) && link.st_uid != geteuid() &&
           (stat(folder, &place) != 0 || place.st_mode & (S_IWGRP | S_IWOTH));
}

void logWriteError()
{
    UI_ERROR_AS("SaveChatTranscript", "error writing chat transcript %s", g_strerror(errno));
}

/// A file that can't be opened is passed over in silence.
void writeTranscript(const char *path, ChatWindow *chatwindow)
{
    const UnbrokenWork work; // opening it empties the one before
    const int file = openTranscript(path);
    if (file < 0)
        return;
    GString *const transcript = copyTranscript(chatwindow);
    const bool isWritten = writeAll(file, transcript->str, transcript->len);
    if (!isWritten)
        logWriteError();
    if (close(file) != 0 && isWritten)
        logWriteError();
    g_string_free(transcript, true);
}

void saveInto(const char *folder, ChatWindow *chatwindow)
{
    if (access(folder, R_OK | W_OK | X_OK) != 0) {
        UI_INFO_AS("SaveChatTranscript", "You Dont Have access");
        startInfoBar(chatwindow->infobar, getString("You don't have enough privilege to access the file"));
        return;
    }
    // The name carries no date: a transcript replaces the one before it.
    g_autofree char *path = g_strdup_printf("%s/Brindle_Chat_Log_%s.txt", folder, "");
    writeTranscript(path, chatwindow);
}

} // namespace

void store_chat_message(const char *message, const char *sender, ChatWindow *chatwindow, struct tm now,
                        struct tm previous)
{
    const MutexLock lock(&chatwindow->mutex);
    appendEntry(message, sender, chatwindow, now, previous);
}

void appendEntry(const char *message, const char *sender, ChatWindow *chatwindow, const struct tm &now,
                 const struct tm &previous)
{
    trace_print(__LINE__, "store_chat_message");
    // The minute alone, without hour and date, on purpose.
    if (chatwindow->AgentMessage != 1 && previous.tm_min == now.tm_min)
        appendShortEntry(chatwindow, message);
    else
        appendFullEntry(chatwindow, sender, message, now);
}

void appendFullEntry(ChatWindow *chatwindow, const char *sender, const char *message, const struct tm &now)
{
    g_string_append_printf(conversation(chatwindow), "\n%s (%d:%d:%d) \n \t\t\t %s", sender, now.tm_hour, now.tm_min,
                           now.tm_sec, textOrNull(message));
}

/// Lines are padded with blanks; the numbers in the format are their counts.
OwnedText transcriptHeader(const struct tm &today, const char *sessionKey, const char *sessionType)
{
    g_autofree char *date = g_strdup_printf("%d/%d/%d", today.tm_mday, today.tm_mon + 1, today.tm_year + 1900);
    return OwnedText(g_strdup_printf("%s%31sBrindle Chat Log%39s\n%s%26s\tDate:(dd/mm/yyyy) %s%48s\n"
                                     "%26s\tsessionkey: %s%54s\n%26s\tType: %s%60s\n%s",
                                     starLines, "", "", starLines, "", date, "", "", sessionKey ? sessionKey : "", "",
                                     "", sessionType ? sessionType : "", "", starLines));
}

int openTranscript(const char *path)
{
    // Non-blocking, for a FIFO of that name would stop the window.
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC;
    return open(path, isTrap(path) ? flags | O_NOFOLLOW : flags, transcriptMode);
}

void enableChatTranscriptButton(ChatWindow *chatwindow)
{
    UI_ENTER();
    if (takeButtonTurn(chatwindow))
        run_on_main(makeButtonUsable, chatwindow);
}

void SaveChatTranscript(GtkWidget *, ChatWindow *chatwindow)
{
    UI_ENTER();
    if (chatwindow->isSavingTranscript)
        return;
    chatwindow->isSavingTranscript = true;
    forgetSessionKey(chatwindow);
    const OwnedText folder = askForFolder();
    if (folder)
        saveInto(folder.get(), chatwindow);
    chatwindow->isSavingTranscript = false;
}
