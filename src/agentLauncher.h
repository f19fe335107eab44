#pragma once
// The agent's life and the program's: starting and watching the agent in a "normal" session, ending with the parent
// in every other.

#include "src/main.h"

#include <semaphore>

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

/// While it lives, SIGTERM ends the process at once although every other thread holds it back: display and bus may
/// hang, and there is nothing yet to be put in order. Thread: main.
class SigtermAtOnce
{
public:
    SigtermAtOnce();
    ~SigtermAtOnce();
    SigtermAtOnce(const SigtermAtOnce &) = delete;
    SigtermAtOnce &operator=(const SigtermAtOnce &) = delete;

private:
    std::binary_semaphore over{0}; ///< released once, by the destructor
    GThread *thread;               ///< "Brindle-start"
};

/// Asks for SIGTERM when the parent dies. A parent that has died already counts as a SIGTERM; it is still held back or
/// ends the process. @return false when that failed. Thread: main, before a handler stands.
bool followParent();

/// `followParent` once more, and a thread of its own that waits for the signal. @return 1, or 0 when that failed.
/// Thread: main.
int handle_on_Parent_kill();

/// Handler of SIGTERM: logs and asks the program to end. Runs only in a thread that never holds a lock.
void ParentSignal(int signalNumber);
