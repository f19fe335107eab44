// The state that the threads of a session share, and its defaults.

#include "src/sessionState.h"

#include "Logger/logger.h"

std::atomic<bool> g_threadChecker = false;
GAsyncQueue *messageQueue = nullptr;
GAsyncQueue *pipeMessageQueue = nullptr;

int initializeVariables(MainWindow *mainWindow)
{
    UI_ENTER();
    mainWindow->rolechange = "0";
    mainWindow->Techname = nullptr;
    g_threadChecker = true;
    mainWindow->StartButtonState = 0;
    mainWindow->isConnected = false;
    mainWindow->dialogChecker = false;
    mainWindow->isClipBoardAllowed = true;
    mainWindow->isAnnotationAllowed = true;
    mainWindow->isSwapScreenAllowed = true;
    mainWindow->isChatAllowed = true;
    mainWindow->isFileTransferAllowed = true;
    mainWindow->active_dialogs = g_list_append(nullptr, g_strdup("test"));
    mainWindow->noParticipants = 0;
    replace_text(mainWindow->clip_agent_text, "");
    mainWindow->homeDir = "";
    mainWindow->allowClipboardAlways = false;
    mainWindow->productName = "Brindle";
    return 0;
}

void createQueues()
{
    messageQueue = g_async_queue_new_full(g_free);
    pipeMessageQueue = g_async_queue_new_full(g_free);
}

void pushText(GAsyncQueue *queue, OwnedText text)
{
    g_async_queue_push(queue, text.release());
}

OwnedText popText(GAsyncQueue *queue)
{
    return OwnedText(static_cast<char *>(g_async_queue_pop(queue)));
}

void free_memory(MainWindow *mainWindow, ChatWindow *chatWindow)
{
    UI_ENTER();
    // No thread is joined, so the reader, a busy dispatcher, the chat thread and the annotation threads may still use
    // the records, the queues, the pipe paths and what both records share: those stay to the end of the process.
    // The image files are asked for by the main thread alone, which has left its loop.
    g_clear_pointer(&mainWindow->imageOffline, g_free);
    g_clear_pointer(&mainWindow->imageOnline, g_free);
    g_clear_pointer(&mainWindow->imageStopButton, g_free);
    g_clear_pointer(&mainWindow->imageRecording, g_free);
    g_clear_pointer(&mainWindow->imageStartButton, g_free);
    g_clear_pointer(&chatWindow->clickableRange, g_free);
}
