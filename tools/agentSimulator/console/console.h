#pragma once

#include "agentSimulator/recorder.h"
#include "agentSimulator/scriptRecording.h"

#include <gtk/gtk.h>

#include <string>

namespace agentSimulator
{

class ConsoleSession;
struct Options;

/// The window and what its parts share. Everything but the session belongs to the main thread.
struct Console {
    ConsoleSession *session = nullptr; ///< borrowed
    GMainLoop *loop = nullptr;         ///< owned; runs until the session's end is asked for
    GtkWidget *window = nullptr;
    GtkWidget *stack = nullptr; ///< one page for each topic

    GtkListStore *rows = nullptr;      ///< owned; the conversation, see conversationView.cpp
    GtkTreeModel *shownRows = nullptr; ///< owned; without what the person does not want to see
    GtkWidget *conversation = nullptr; ///< the list
    bool showsPings = false;
    bool showsOnlyCompanion = false;

    GtkWidget *pingSwitch = nullptr;
    GtkWidget *answerSwitch = nullptr;
    bool wasPinging = false, wasAnswering = false; ///< the session when the switches last followed it
    bool isSyncing = false;                        ///< the switches follow the session, not the other way round

    ScriptRecording recording;
    GtkTextBuffer *script = nullptr; ///< borrowed from the script's view
    GtkWidget *scriptState = nullptr;
    GtkWidget *recordButton = nullptr;
    GtkWidget *playButton = nullptr;
    GtkWidget *stopButton = nullptr;
    GtkWidget *waitsForAnswers = nullptr;
    std::string scriptFolder; ///< where the script came from; relative paths of "sendfile" start here
};

/// Carries out a script command, and adds it to the script while that is recorded. Thread: main.
void performCommand(Console *console, const std::string &command);
/// Adds what was already carried out to the script. Thread: main.
void noteCommand(Console *console, const std::string &command);

/// Gives a control the name that assistive technology says.
void nameControl(GtkWidget *control, const std::string &name);
/// A label for reading, as opposed to one for a control. @param styleClass  of the style sheet, or null
GtkWidget *buildText(const char *text, const char *styleClass);

} // namespace agentSimulator
