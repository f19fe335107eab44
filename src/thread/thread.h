#pragma once
// The inbound way: reader, dispatcher and liveness check.

#include "src/main.h"

/// Body of "Brindle-checkI": reads the agent's pipe, one writer session a text. @param unused ignored.
gpointer infiniteChecker(gpointer unused);
/// Body of "Brindle-parseMessage". @param threadData a `ThreadData`, copied as the thread starts.
gpointer messageParser(gpointer threadData);
/// Body of "Brindle-UI-checker", for a session whose first line is still to be read: `uiChecker` once it was, or after
/// five minutes without a ping. @param mainwindow the `MainWindow`.
gpointer watchAgent(gpointer mainwindow);
/// Tells `watchAgent` that the first line was read. Thread: main, once.
void noteFirstLineRead();
/// Ends the program when the agent stops pinging. @param mainwindow the `MainWindow`.
gpointer uiChecker(gpointer mainwindow);
