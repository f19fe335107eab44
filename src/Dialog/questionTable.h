#pragma once
// The confirmation family as data: one row for each question. A new question is a new row, a show function and a
// response handler; `questionDialog.h` does the work.

#include "src/main.h"

enum class QuestionId {
    joinSession,
    featureConsent,
    leaveSession,
    rootAccess,
    adminModeUnsupported,
    runScript,
    unattendedAccess,
    lockScreen,
    participantControl,
    reboot,
};

enum class Title { fixed, product, productWindow };

/// How an answer reaches the agent.
enum class Line { none, dialogResponse, buttonClick };

/// One of the two outcomes of a question.
struct Answer {
    Line line = Line::none;
    const char *text = nullptr; ///< what is sent
    bool addsArgument = false;  ///< followed by a blank and what the question is about
    const char *log = nullptr;  ///< null: nothing is logged
};

/// What is special about a question, joined with "|".
enum Trait : unsigned {
    guarded = 1,                  ///< can't be answered from the keyboard in a "normal" session
    reportsPosition = 2,          ///< the agent learns where it stands; needs a kind
    listensToStructure = 4,       ///< the main window gets the structure events
    endsControlRequest = 8,       ///< the answer lets the next participant ask for control
    unlistedBeforeAnswer = 16,    ///< its kind is free again before the answer is sent, else after it has gone
    logsBeforeSending = 32,       ///< else after
    closesBeforeSending = 64,     ///< else after
    logsOnlyPressedRefusal = 128, ///< closing by the frame is not logged
    refusalEndsProgram = 256,
    presentsItself = 512, ///< asks the window manager for attention as it appears
    resizable = 1024,
    translatesLabels = 2048, ///< else the labels are shown as given
    textIsFinished = 4096,   ///< its text is no translation key
    askedByCustomer = 8192,  ///< comes when the customer wants it, else in the midst of something
};

/// A row of the table.
struct Question {
    QuestionId id;
    Title title;
    const char *titleText;   ///< for `Title::fixed`
    const char *acceptLabel; ///< named "acceptbutton"
    int acceptResponse;      ///< the only response that agrees
    const char *rejectLabel; ///< GTK_RESPONSE_REJECT; null: refused only by closing
    const char *text;        ///< translation key; null when the show function makes the text
    const char *kind;        ///< entry in the registry of open dialogs; null: may stack, or see the show function
    Answer accepted, refused;
    int widthPx; ///< default width, -1 for the natural one
    unsigned traits;
};

/// The row of a question. Thread: any.
const Question &findQuestion(QuestionId id);
