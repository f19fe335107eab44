#pragma once
// Opens a question from its row of the table and carries its answer out. Thread: main.

#include "src/Dialog/questionTable.h"

/// What an answer needs beside the response.
struct Reply {
    QuestionId id;
    MainWindow *mainwindow;
    const char *handler; ///< name for the log
};

/// Registers a kind of dialog, or logs that one is open. @return true when it may open.
bool claimKind(MainWindow *mainwindow, const char *kind, const char *function);

/// Builds the dialog of a row; nothing is shown yet.
/// @param text  the question: a translation key, or finished text when the row says so
GtkWidget *buildQuestion(const Question &question, MainWindow *mainwindow, const char *text);

/// Keeps what the question is about, to be sent with the answer. @param argument copied.
void keepArgument(GtkWidget *dialog, const char *argument);

/// Places, guards and shows a dialog that was built. @param kind copied; null when the row has none.
void showQuestion(GtkWidget *dialog, const Question &question, MainWindow *mainwindow, const char *kind);

/// Sends and logs what the row says, once, and closes the dialog.
void answerQuestion(GtkDialog *dialog, int response, const Reply &reply);

/// Sends one outcome of a row. @param argument may be null.
void sendAnswer(const Answer &answer, const char *argument);
