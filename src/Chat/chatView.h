#pragma once
// The conversation view: its two text views, its tags, and the one clickable word. Thread: main.

#include "src/main.h"

#include <initializer_list>

/// What an invitation needs; freed by `AddLenSession`.
struct _AddLenSessionData {
    ChatWindow *chatwindow; ///< borrowed
    char *technicianName;   ///< owned, may be null
};

/// Builds the panel's content and the record's view parts. @return its outer box.
GtkWidget *ChatWindowNew(ChatWindow *chatwindow);
/// Makes the tags of the conversation. @return 0.
int createBufferTags(GtkTextBuffer *buffer);

/// Appends a text under the tags named; what is not valid UTF-8 is repaired.
void appendTagged(GtkTextBuffer *buffer, const char *text, std::initializer_list<const char *> tags);
/// Makes somebody the author of the last block in the view. @return true when it was another one.
bool startBlock(ChatWindow *chatwindow, const char *author);
/// Puts the mark "last_pos" at the end of the conversation. @return the mark, borrowed.
GtkTextMark *markLastPosition(GtkTextBuffer *buffer);
/// Has the end of the conversation scrolled into sight again as soon as all of it is laid out: what is scrolled to
/// while lines are still to be measured ends short of a longer text or of a burst.
void scrollAgainWhenLaidOut(ChatWindow *chatwindow);

/// "button-press-event" of the conversation: a click on the live word. @return false: selection goes on.
gboolean on_text_view_button_press(GtkWidget *widget, GdkEventButton *event, ChatWindow *chatwindow);
/// Appends a boxed notice. @param word made clickable where it first occurs; may be null, as may the callback.
void append_message_with_clickable_range_word(GtkTextView *view, const char *text, const char *word,
                                              ClickableCallback callback, ChatWindow *chatwindow);
/// Appends the invitation to an AR session. @param data freed. @return 0.
gboolean AddLenSession(_AddLenSessionData *data);
/// The invitation was clicked: opens the AR window.
void LoadWebviewWrapper(const char *url, ChatWindow *chatwindow);
