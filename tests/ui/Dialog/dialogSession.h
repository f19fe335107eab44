#pragma once
// A session with its window, in which the agent prompts and the customer answers.

#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <gtk/gtk.h>

#include <string>
#include <vector>

class DialogSession : public WindowSession
{
protected:
    explicit DialogSession(std::string sessionType = "normal") : WindowSession(std::move(sessionType)) {}

    void SetUp() override;
    /// Closes what is open without an answer.
    void TearDown() override;

    /// Hands a line to the prompt handler on a thread of its own, as the parser does. @param words after "dialogPrompt"
    void prompt(const std::string &words);
    /// Hands a line to the swap handler, as `prompt`. @param words after "initSwap"
    void reportSwap(const std::string &words);
    /// Hands a participant to the window.
    void addParticipant(const std::string &name, const std::string &identifier);

    /// Waits for the open window with a title; fails when there is none in time.
    GtkWidget *awaitDialog(const std::string &title);
    /// All open dialogs, when nothing is scheduled.
    std::vector<GtkWidget *> dialogs();
    /// Prompts and gives the one dialog that is open then.
    GtkWidget *open(const std::string &words);
    /// Prompts and waits for the dialog.
    GtkWidget *raise(const std::string &words, const std::string &title);

    /// Waits until nothing is scheduled and all that was sent has arrived.
    void settle();
    /// Drops what was sent so far, when all of it has arrived.
    void forgetLines();
    /// What was sent so far, without the position reports.
    std::vector<std::string> answers();
    /// Kinds for which a position was reported.
    std::vector<std::string> reportedKinds();
    /// Kinds in the registry, without its first entry.
    std::vector<std::string> openKinds() const;
};

/// What a question asks.
std::string textOf(GtkWidget *dialog);
/// A response as a click or the window manager gives it.
void answer(GtkWidget *dialog, int response);
/// Closes a dialog as the window's frame does.
void closeByFrame(GtkWidget *dialog);
/// Lets the timer of a dialog that closes itself run now. @return false when it has none.
bool elapse(GtkWidget *dialog);
/// Milliseconds until a dialog closes itself.
double remainingMs(GtkWidget *dialog);

/// Text as base64.
std::string encoded(const std::string &text);
