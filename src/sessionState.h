#pragma once
// What every thread of a session shares: the run flag, the two queues, and the defaults of the state record.

#include "src/main.h"
#include "src/support.h"

/// True while the worker threads are to keep running. Written by start-up and shut-down.
extern std::atomic<bool> g_threadChecker;
/// Chat texts from the agent, owned by the queue; made by `createQueues`, never freed, since threads that are not
/// joined wait in it.
extern GAsyncQueue *messageQueue;
/// Texts as read from the agent's pipe; as `messageQueue`.
extern GAsyncQueue *pipeMessageQueue;
/// The text that ends the consumer of a queue.
inline constexpr char stopSentinel[] = "application-stop";

/// Writes the defaults of a new session into a cleared record. @return 0. Thread: main.
int initializeVariables(MainWindow *mainWindow);

/// Makes both queues. Thread: main, before any worker runs.
void createQueues();

/// Puts a text into a queue, which takes it. Thread: any.
void pushText(GAsyncQueue *queue, OwnedText text);
/// Waits for the next text of a queue. Thread: any.
OwnedText popText(GAsyncQueue *queue);

/// Frees what no thread can reach any more; what a worker that still runs may touch stays to the end of the process.
/// Thread: main, after the main loop.
void free_memory(MainWindow *mainWindow, ChatWindow *chatWindow);
