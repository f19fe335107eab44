#pragma once
// What the agent's lines do. Each handler is given its own copy of the line, frees it, and returns 0.
// Thread: the parser's; whatever touches a widget goes through `run_on_main`.

#include "src/main.h"

/// "dialogPrompt ...": raises the dialog that is asked for.
gboolean handleDialogPromptMessage(char *message, MainWindow *mainwindow);
/// "sessionStatus ...": changes permissions, names, the status row and the participants.
gboolean handleSessionStatusMessage(char *message, MainWindow *mainwindow);
/// "initSwap ...": the outcome of the customer's request to swap screens.
gboolean handleSwapScreenMessage(char *message, MainWindow *mainwindow);
