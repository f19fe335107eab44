#pragma once
// The two named pipes between the window and its agent.

#include "src/main.h"

/// Pipe to the agent ("myfifo"); owned, written once by `set_pipe_path`, then constant to the end of the process.
extern char *g_UiStatus;
/// Pipe from the agent ("Status"); as `g_UiStatus`.
extern char *g_AgentStatus;
/// Product word, shown as the title of some dialogs; never null; borrowed; written once by `set_pipe_path`.
extern const char *g_productName;
/// Serialises the writers of `g_UiStatus`; stays locked while a write waits for its reader.
extern GMutex pipeMutex;

/// Chooses the pipes of the session and makes them. Thread: main, once.
/// @param sessionType  value of -u, defaulted; borrowed
void set_pipe_path(const char *sessionType, const MainWindow *mainWindow);

/// Sends one text to the agent in one open-write-close cycle.
/// @param pipePath  path of the FIFO; borrowed
/// @param text      the text with its newline, if the line has one; borrowed
/// Thread: any; serialised by `pipeMutex`. Waits until a reader has the FIFO open, unless the program was asked to
/// end: then a message nobody waits for is given up. A failed write is logged and lost.
void pipewriter(const char *pipePath, const char *text);

/// Deletes both pipe files, the agent's first. Thread: main.
void unlinkPipes();
