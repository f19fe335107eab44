#pragma once
// The agent's life and the program's: starting and watching the agent in a "normal" session, ending with the parent
// in every other.

#include "src/main.h"

/// Body of "Brindle-Starter": starts the agent, up to three times, and ends the program with it.
/// @param mainwindow  the `MainWindow`
/// @return null; a failing fork or wait ends the whole process with status 1
gpointer AgentStarter(gpointer mainwindow);

/// The parent as it is when the program starts, and SIGTERM kept back until `handle_on_Parent_kill` can serve it.
/// Thread: main, first of all, before any other thread exists.
void holdBackSigterm();
/// True when SIGTERM has come while it is held back. Thread: main.
bool isSigtermPending();
/// Lets SIGTERM end the process at once again, for sessions that don't end with their parent. Thread: main.
void releaseSigterm();

/// Asks for SIGTERM when the parent dies, and has a thread of its own wait for it. A parent that has died already
/// counts as a SIGTERM. @return 1, or 0 when that failed. Thread: main.
int handle_on_Parent_kill();

/// Handler of SIGTERM: logs and asks the program to end. Runs only in a thread that never holds a lock.
void ParentSignal(int signalNumber);
