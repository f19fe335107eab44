#pragma once
// A session whose chat panel can be looked at and typed into.

#include "src/Chat/chat.h"
#include "src/IdleThread/chatUpdate.h"
#include "src/main.h"
#include "src/sessionState.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <string>
#include <vector>

/// A run of conversation text under one set of tags.
struct Piece {
    std::string text;
    std::vector<std::string> tags; ///< sorted
};
bool operator==(const Piece &left, const Piece &right);
std::ostream &operator<<(std::ostream &out, const Piece &run);

class ChatPanelSession : public WindowSession
{
protected:
    using WindowSession::WindowSession;
    void SetUp() override;
    void TearDown() override;

    GtkTextView *view() const { return GTK_TEXT_VIEW(chatWindow->chatview); }
    GtkTextBuffer *buffer() const { return gtk_text_view_get_buffer(view()); }
    GtkTextView *input() const;

    /// The whole conversation.
    std::string shown() const;
    /// The conversation cut where the tags change.
    std::vector<Piece> runs() const;
    /// Opens the chat panel as the toolbar does, and lets it be laid out.
    void openPanel();

    /// The agent's text for the chat thread.
    void receive(const std::string &text);
    /// Waits until the conversation contains a text.
    void awaitShown(const std::string &text);
    /// Waits until a message came that is to be shown next, and leaves it there.
    void awaitDelivered();

    /// Puts a text into the input box and lets go of a key over it.
    void type(const std::string &text, guint key = GDK_KEY_Return);
    /// What is left in the input box.
    std::string typed() const;

private:
    GThread *m_thread = nullptr;
};
