#pragma once
// The conversation as plain text and its file.

#include "src/main.h"
#include "src/support.h"

/// Appends one entry; short when the minute is that of the previous one. Thread: any.
/// @param message  may be null, which is written as "(null)"
void store_chat_message(const char *message, const char *sender, ChatWindow *chatwindow, struct tm now,
                        struct tm previous);
/// As `store_chat_message`. The caller holds `ChatWindow.mutex`. Thread: any.
void appendEntry(const char *message, const char *sender, ChatWindow *chatwindow, const struct tm &now,
                 const struct tm &previous);
/// Appends one entry with sender and time. The caller holds `ChatWindow.mutex`. Thread: any.
/// @param message  may be null, as above
void appendFullEntry(ChatWindow *chatwindow, const char *sender, const char *message, const struct tm &now);

/// What stands above the conversation in a transcript's file. Thread: any.
/// @param sessionKey, sessionType  may be null
OwnedText transcriptHeader(const struct tm &today, const char *sessionKey, const char *sessionType);

/// Opens the transcript's file, empty, to be written. In a folder that others may write to, a symbolic link of one of
/// them is refused: what it points to would be overwritten with the customer's rights. Thread: any.
/// @return a descriptor; -1 when it can't be opened
int openTranscript(const char *path);

/// Makes the save button usable. Thread: any; the widget changes on the main thread.
void enableChatTranscriptButton(ChatWindow *chatwindow);
/// "clicked" of the save button: asks for a folder and writes the transcript there. Thread: main.
void SaveChatTranscript(GtkWidget *button, ChatWindow *chatwindow);
