// The dispatcher and the liveness check. A text from the pipe comes out of the queue, is walked line by line, and each
// line acts through the first row of the table that matches it. The dispatcher waits neither for the agent nor for the
// screen.

#include "src/thread/thread.h"

#include "Logger/logger.h"
#include "src/Dialog/dialog.h"
#include "src/IdleThread/IdleThread.h"
#include "src/Protocol/messageHandler.h"
#include "src/Utils/Utils.h"
#include "src/Utils/oneShotEvent.h"
#include "src/Utils/webview.h"
#include "src/localizationText.h"
#include "src/sessionState.h"

#include <malloc.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace
{

constexpr gulong livenessPeriodUs = 15UL * G_USEC_PER_SEC;
// An agent that neither reads nor pings for so long after it has started this program has gone. Seconds are counted, no
// clock is read: the machine may have been stopped.
constexpr int firstLinePatienceSeconds = 300;
constexpr gsize bigTextBytes = gsize(256) * 1024;
constexpr gsize chatOffset = 5;        // "chat" and a separator
constexpr gsize sessionKeyOffset = 11; // "sessionKey" and a separator

/// One line on its way through the table.
struct Inbound {
    const char *line; ///< stripped of white space
    const char *text; ///< the whole text that the line is part of
    const ThreadData &data;
};

enum class Match { prefix, equal };

struct Route {
    const char *keyword;
    Match match;
    void (*act)(const Inbound &inbound);
};

OneShotEvent firstLineWasRead;

/// The rest of a text behind its keyword; a shorter text has none.
const char *textFrom(const char *text, gsize offset)
{
    return strnlen(text, offset) < offset ? "" : text + offset;
}

void noteConnected(MainWindow *mainwindow)
{
    if (!mainwindow->isConnected)
        mainwindow->isConnected = true;
}

void actDialogPrompt(const Inbound &inbound)
{
    noteConnected(inbound.data.mainwindow);
    UI_INFO_AS("messageParser", "Dialog Prompt Message recived ");
    handleDialogPromptMessage(g_strdup(inbound.line), inbound.data.mainwindow);
}

void actSessionStatus(const Inbound &inbound)
{
    noteConnected(inbound.data.mainwindow);
    UI_INFO_AS("messageParser", "Session Status Message recived ");
    handleSessionStatusMessage(g_strdup(inbound.line), inbound.data.mainwindow);
}

void actSwapOutcome(const Inbound &inbound)
{
    UI_INFO_AS("messageParser", "Swap screen status message recived");
    handleSwapScreenMessage(g_strdup(inbound.line), inbound.data.mainwindow);
}

/// A name and a text, to a second line end: nothing reads what is behind, which may be a thousand more messages.
OwnedText copyMessage(const char *text)
{
    while (g_ascii_isspace(*text))
        text++;
    const char *const nameEnd = strchr(text, '\n');
    const char *const textEnd = nameEnd ? strchr(nameEnd + 1, '\n') : nullptr;
    return OwnedText(textEnd ? g_strndup(text, gsize(textEnd - text)) : g_strdup(text));
}

// Takes the text's second line, too; that and the others are dispatched as well.
void actChat(const Inbound &inbound)
{
    pushText(messageQueue, copyMessage(textFrom(inbound.text, chatOffset)));
}

gboolean askForClipboard(MainWindow *mainwindow)
{
    show_clipboardPermission_dialog(mainwindow, "");
    return G_SOURCE_REMOVE;
}

void actClipboard(const Inbound &inbound)
{
    run_on_main(askForClipboard, inbound.data.mainwindow);
}

void actExit(const Inbound &)
{
    UI_INFO_AS("messageParser", "closing agent");
    request_quit();
}

void actConnectionLost(const Inbound &inbound)
{
    UI_INFO_AS("messageParser", "connection Lost");
    run_on_main(noInternet, inbound.data.mainwindow);
}

gboolean showNotSupported(MainWindow *mainwindow)
{
    startInfoBar(mainwindow->infoBarStruct, getString("Your computer does not support Annotation."));
    return G_SOURCE_REMOVE;
}

void actNotSupported(const Inbound &inbound)
{
    UI_INFO_AS("messageParser", "Cannot start annotation as this system doenn't support 32 bit");
    run_on_main(showNotSupported, inbound.data.mainwindow);
}

gboolean showInputBlocked(MainWindow *mainwindow)
{
    setInfoBarText(mainwindow->infoBarStruct, "Press Esc key to enable input device"); // in every language
    return BlockinputInfoBar(mainwindow->infoBarStruct);
}

void actBlockInput(const Inbound &inbound)
{
    UI_INFO_AS("messageParser", "blockInput");
    run_on_main(showInputBlocked, inbound.data.mainwindow);
}

void actUnblockInput(const Inbound &inbound)
{
    UI_INFO_AS("messageParser", "UnblockInput");
    hideInfoBar(inbound.data.mainwindow->infoBarStruct);
}

void actNothing(const Inbound &) {}

// Works on the whole text, as chat does.
void actSessionKey(const Inbound &inbound)
{
    const MutexLock lock(&inbound.data.chatwindow->mutex);
    replace_text(inbound.data.chatwindow->sessionKey, textFrom(inbound.text, sessionKeyOffset));
}

gboolean showOnDemand(MainWindow *mainwindow)
{
    gtk_widget_show_all(mainwindow->onDemandScreenSharingImage);
    gtk_widget_show_all(mainwindow->onDemandScreenSharing);
    return G_SOURCE_REMOVE;
}

gboolean hideOnDemand(MainWindow *mainwindow)
{
    gtk_widget_hide(mainwindow->onDemandScreenSharingImage);
    return G_SOURCE_REMOVE;
}

void actOnDemandStart(const Inbound &inbound)
{
    run_on_main(showOnDemand, inbound.data.mainwindow);
}

void actOnDemandStop(const Inbound &inbound)
{
    run_on_main(hideOnDemand, inbound.data.mainwindow);
}

void actPing(const Inbound &inbound)
{
    UI_INFO_AS("messageParser", "Received Ping UI, sending alive response");
    const MutexLock lock(&inbound.data.mainwindow->PingUiMutex);
    inbound.data.mainwindow->isAlive = true;
}

struct ArInvitation {
    char *line; ///< owned
    ThreadData data;
};

gboolean startArSession(ArInvitation *invitation)
{
    int x = 0, y = 0;
    get_window_position(invitation->data.mainwindow->window, &x, &y);
    UI_INFO_AS("messageParser", "AR Session initiate message received at position x:%d y:%d : %s", x, y,
               invitation->line);
    HandleLensSession(invitation->line, invitation->data.chatwindow);
    g_free(invitation);
    return G_SOURCE_REMOVE;
}

void actArSession(const Inbound &inbound)
{
    auto *const invitation = g_new(ArInvitation, 1);
    *invitation = {g_strdup(inbound.line), inbound.data};
    run_on_main(startArSession, invitation);
}

const Route routes[] = {
    {"dialogPrompt", Match::prefix, actDialogPrompt},
    {"sessionStatus", Match::prefix, actSessionStatus},
    {"initSwap", Match::prefix, actSwapOutcome},
    {"chat", Match::prefix, actChat},
    {"clipboard", Match::prefix, actClipboard},
    {"exit", Match::equal, actExit},
    {"connectionLost", Match::equal, actConnectionLost},
    {"not32", Match::equal, actNotSupported},
    {"blockInput", Match::equal, actBlockInput},
    {"unblockInput", Match::equal, actUnblockInput},
    {" ", Match::equal, actNothing},
    {"", Match::equal, actNothing},
    {"sessionKey", Match::prefix, actSessionKey},
    {"ONDEMAND START", Match::prefix, actOnDemandStart},
    {"ONDEMAND STOP", Match::prefix, actOnDemandStop},
    {"PING UI", Match::prefix, actPing},
    {PROTO_AR_SESSION, Match::prefix, actArSession},
};

bool matches(const Route &route, const char *line)
{
    return route.match == Match::prefix ? g_str_has_prefix(line, route.keyword)
                                        : g_ascii_strcasecmp(line, route.keyword) == 0;
}

void dispatchLine(const Inbound &inbound)
{
    for (const Route &route : routes)
        if (matches(route, inbound.line))
            return route.act(inbound);
    UI_DEBUG("Unhandled message %s", inbound.line);
}

/// One line after the other, each as its own copy: the text itself stays as it came.
void dispatchText(const char *text, const ThreadData &data)
{
    for (const char *line = text;;) {
        const char *const end = strchrnul(line, '\n');
        g_autofree char *stripped = g_strndup(line, gsize(end - line));
        dispatchLine({g_strstrip(stripped), text, data});
        if (!*end || !g_threadChecker)
            return;
        line = end + 1;
    }
}

void forgetJoinMessage(MainWindow *mainwindow)
{
    const MutexLock lock(&mainwindow->mutex);
    replace_text(g_joinConfirmationMessage, nullptr);
}

/// Runs behind the callbacks of a big text, so that what they needed goes back to the system as well.
gboolean giveMemoryBack(MainWindow *)
{
    malloc_trim(0);
    return G_SOURCE_REMOVE;
}

/// Takes the sign of life; true when there was one since the last time.
bool takeSignOfLife(MainWindow *mainwindow)
{
    const MutexLock lock(&mainwindow->PingUiMutex);
    return std::exchange(mainwindow->isAlive, false);
}

void noteSignOfLife(MainWindow *mainwindow)
{
    const MutexLock lock(&mainwindow->PingUiMutex);
    mainwindow->isAlive = true;
}

/// A ping before the first line was read only says that somebody is there; reading it is a sign of life.
void waitForFirstReader(MainWindow *mainwindow)
{
    for (int silent = 0; silent < firstLinePatienceSeconds && !quit_requested(); silent++) {
        if (firstLineWasRead.wait(1000))
            return noteSignOfLife(mainwindow);
        if (takeSignOfLife(mainwindow))
            silent = 0;
    }
}

} // namespace

gpointer messageParser(gpointer threadData)
{
    UI_ENTER();
    const ThreadData data = *static_cast<const ThreadData *>(threadData);
    const OwnedText agentPipe(g_strdup(g_AgentStatus));
    forgetJoinMessage(data.mainwindow);
    while (g_threadChecker) {
        OwnedText text = popText(pipeMessageQueue);
        if (strcmp(text.get(), stopSentinel) == 0)
            break;
        const bool isBig = strlen(text.get()) >= bigTextBytes;
        dispatchText(text.get(), data);
        if (isBig) {
            text.reset();
            run_on_main(giveMemoryBack, data.mainwindow);
        }
    }
    unlink(agentPipe.get());
    UI_INFO("closing thread");
    return nullptr;
}

gpointer watchAgent(gpointer mainwindow)
{
    waitForFirstReader(static_cast<MainWindow *>(mainwindow));
    return uiChecker(mainwindow);
}

void noteFirstLineRead()
{
    firstLineWasRead.happen();
}

gpointer uiChecker(gpointer mainwindow)
{
    UI_ENTER();
    while (g_threadChecker && !quit_requested()) {
        UI_INFO("Checking ss is alive");
        if (!takeSignOfLife(static_cast<MainWindow *>(mainwindow))) {
            UI_INFO("UI thread is not alive, exiting");
            request_quit();
            break;
        }
        g_usleep(livenessPeriodUs);
    }
    UI_INFO("UI checker thread exiting");
    return nullptr;
}
