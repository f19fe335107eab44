#pragma once
// What every fuzzer shares: warnings that end the run, and a session with its real window.

#include "src/main.h"
#include "tests/support/testSession.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// The input as a text of the pipe: what its reader puts in the place of NUL bytes is in their place here, too.
std::string textOf(const uint8_t *data, size_t size);

/// Makes every warning of GLib, GTK and Pango end the run, as a crash does. Once, before anything else.
void failOnWarnings();

/// A session outside a test run; the folders of its home go with it.
class FuzzSession : public WindowSession
{
public:
    /// The one session of this process: made when it is first asked for, and anew when its window is gone or something
    /// asked for its end.
    static FuzzSession &current();
    ~FuzzSession() override;

    ChatWindow *chat() const { return chatWindow; }
    /// The agent may take the window away; the conversation goes with it.
    bool hasWindow() const { return chatWindow->chatview; }

    /// Hands a text to the dispatcher on a worker, then to the chat reception, and shows what came of it.
    /// @param choosesFiles  whether a file chooser is agreed to; else it is cancelled
    void receive(const std::string &text, bool choosesFiles);
    /// Hands a text to the chat reception alone.
    void receiveChat(const std::string &text);
    /// Answers every open dialog. @param choice  picks the answers
    void answerDialogs(size_t choice);
    /// Takes back what would make the next input slower: rows, conversation, what the agent was sent.
    void tidyUp();

private:
    FuzzSession();
    void TestBody() override {}
    void receiveWaitingChat();
};
