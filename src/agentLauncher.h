#pragma once
// The agent's life and the program's: starting and watching the agent in a "normal" session, ending with the parent
// in every other.

#include "src/main.h"

/// Body of "Brindle-Starter": starts the agent, up to three times, and ends the program with it. Once the end was
/// asked for, no other is started.
/// @param mainwindow  the `MainWindow`
/// @return null; a failing fork or wait ends the whole process with status 1
gpointer AgentStarter(gpointer mainwindow);

/// The parent as it is when the program starts, and SIGTERM kept back until `handle_on_Parent_kill` can serve it.
/// Thread: main, first of all, before any other thread exists.
void holdBackSigterm();
/// Lets SIGTERM end the process at once again, for sessions that don't end with their parent. Thread: main.
void releaseSigterm();

/// Begins to look for SIGTERM and the parent's end, which end the process at once, by that signal, until the desktop is
/// reached: display and bus may hang, and there is nothing yet to be put in order but the desktop entry, which may be
/// another companion's. Thread: main, after `holdBackSigterm`.
void watchStart();
/// From here on either only makes `isStartOver` true; `leave_hung_program` comes where the start goes no further.
/// Thread: main.
void noteDesktopReached();
/// True once SIGTERM has come or the parent has gone: the session ends as soon as it can. False for a session whose
/// start isn't watched. Thread: any.
bool isStartOver();

/// Ends `watchStart`, asks for SIGTERM when the parent dies, and has a thread of its own serve that signal. A parent
/// that has died already counts as a SIGTERM. @return 1, or 0 when the parent's death can't be told. SIGTERM ends the
/// process at once then, and when no handler can be installed, which the log tells. Thread: main.
int handle_on_Parent_kill();

/// Serves SIGTERM: logs and asks the program to end. Runs only in a thread that never holds a lock.
void ParentSignal(int signalNumber);
