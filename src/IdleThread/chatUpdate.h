#pragma once
// A received chat message comes to the view.

#include "src/main.h"
#include "src/support.h"

/// One received message on its way to the view.
struct ReceivedMessage {
    OwnedText sender;
    OwnedText text;           ///< null: opens the panel and shows nothing
    bool startsBlock = false; ///< another author than that of the message before
};

/// Leaves a message for `UpdateChat` and has it run. Also notes it in the record's `message` and `isdifferentsender`.
/// Thread: any.
void deliverToView(ChatWindow *chatwindow, ReceivedMessage received);

/// Opens the chat panel and renders what was received, a moment's worth at a time: of a burst the rest follows when
/// the window had its turn. With nothing delivered it renders what the record's own `message` holds. Thread: main.
gboolean UpdateChat(ChatWindow *chatwindow);
