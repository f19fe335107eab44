// After an approved swap the control window has gone and the session goes on: whatever comes then is harmless.

#include "src/IdleThread/IdleThread.h"
#include "src/Protocol/messageHandler.h"
#include "src/Utils/Utils.h"
#include "src/controls.h"
#include "src/sessionState.h"
#include "src/thread/thread.h"
#include "tests/support/testSession.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace
{

// A GLib critical fails each of these tests.
class GoneWindow : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        replace_text(mainWindow->participants->identifier, "old");
        AddParticipants(mainWindow);
        std::thread([&] { handleSwapScreenMessage(g_strdup("initSwap APPROVED"), mainWindow); }).join();
        drainMainLoop();
    }
    /// Dispatches a text on a worker and runs what it scheduled.
    void receive(const std::string &text)
    {
        pushText(pipeMessageQueue, OwnedText(g_strdup(text.c_str())));
        pushText(pipeMessageQueue, OwnedText(g_strdup(stopSentinel)));
        ThreadData data = {mainWindow, chatWindow, nullptr};
        std::thread(messageParser, &data).join();
        drainMainLoop();
    }
    void fillMailbox(const char *id)
    {
        replace_text(mainWindow->participants->Data, "Ann");
        replace_text(mainWindow->participants->identifier, id);
    }
};

} // namespace

TEST_F(GoneWindow, IsReallyGone)
{
    EXPECT_FALSE(gtk_widget_get_visible(mainWindow->window));
    EXPECT_FALSE(gtk_widget_get_realized(mainWindow->window));
    EXPECT_TRUE(logHas(" Swap Screen has been approved"));
    EXPECT_FALSE(quit_requested());
}

TEST_F(GoneWindow, LeavesEveryReportHarmless)
{
    using Callback = gboolean (*)(MainWindow *);
    for (const Callback callback : {ButtonChangeStart, ButtonChangeStop, noInternet, Reconnected}) {
        EXPECT_FALSE(callback(mainWindow));
        drainMainLoop();
    }
    EXPECT_EQ(customeRolesHandling(mainWindow), 0);
    EXPECT_EQ(mainWindow->StartButtonState, 2);
}

TEST_F(GoneWindow, LeavesEveryNoticeHarmless)
{
    InfoBar *const bar = mainWindow->infoBarStruct;
    startInfoBar(bar, "nobody sees this");
    PopUpInfoBar(bar);
    BlockinputInfoBar(bar);
    hideInfoBar(bar);
    // The notices' own timers run as well.
    EXPECT_TRUE(waitUntil([&] { return countLogMessages(logPath(), "Hiding info bar") == 3; }));
}

TEST_F(GoneWindow, LeavesEveryParticipantHarmless)
{
    for (const char *const id : {"new", "old"}) {
        fillMailbox(id);
        AddParticipants(mainWindow);
        fillMailbox(id);
        ModifyParticipants(mainWindow);
        fillMailbox(id);
        DeleteParticipants(mainWindow);
        drainMainLoop();
    }
    EXPECT_EQ(findParticipantName(mainWindow, "unknown"), nullptr);
}

TEST_F(GoneWindow, LeavesEveryPanelHarmless)
{
    using Toggle = void (*)(GtkWidget *, MainWindow *);
    for (const Toggle toggle : {expandParticipantsWidget, expandWidget, expandFileTransfer, expandParticipantsWidget,
                                expandWidget, expandFileTransfer})
        toggle(nullptr, mainWindow);
    participantsExpandCallback(mainWindow);
    fileTransferExpandCallback(mainWindow);
    minimizeExpander(mainWindow->annotation->contentArea);
    resizeMainWindow(mainWindow->window);
    drainMainLoop();
    EXPECT_EQ(mainWindow->chat->buttonState, 2);
}

TEST_F(GoneWindow, LeavesTheSharingButtonHarmless)
{
    for (mainWindow->StartButtonState = 0; mainWindow->StartButtonState < 2;)
        on_start_clicked(nullptr, mainWindow);
    on_start_clicked(nullptr, mainWindow);
    EXPECT_THAT(sentLines(2), ::testing::ElementsAre("buttonClicked stop", "buttonClicked start"));
}

TEST_F(GoneWindow, LeavesAChatMessageHarmless)
{
    replace_text(chatWindow->message, "nobody sees this");
    EXPECT_FALSE(UpdateChat(chatWindow));
    drainMainLoop();
    EXPECT_EQ(chatWindow->message, nullptr);
}

TEST_F(GoneWindow, LeavesEveryLineOfTheAgentHarmless)
{
    const char *const lines[] = {
        "sessionStatus Connected",
        "sessionStatus disconnected",
        "sessionStatus disablechat",
        "sessionStatus enablechat",
        "sessionStatus TECH-NAME Ann",
        "sessionStatus participantsAdd Ann 1 false",
        "sessionStatus participantsModify 1 true",
        "sessionStatus participantsDelete Ann 1",
        "initSwap approved",
        "initSwap swapRejected",
        "initSwap toManyUsers",
        "connectionLost",
        "not32",
        "blockInput",
        "unblockInput",
        "ONDEMAND START",
        "ONDEMAND STOP",
        "PING UI",
        "sessionKey k",
        "unknown",
    };
    for (const char *const line : lines)
        receive(line);
    EXPECT_TRUE(mainWindow->isAlive);
    EXPECT_FALSE(quit_requested());
}

TEST_F(GoneWindow, StillEndsWithExit)
{
    receive("exit\n");
    EXPECT_TRUE(quit_requested());
    run_main_loop();
    EXPECT_EQ(gtk_main_level(), 0u);
}

TEST_F(GoneWindow, HasNoPlaceForADialogBesideIt)
{
    GtkWidget *const dialog = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    int x = 5, y = 5;
    EXPECT_EQ(get_window_position(mainWindow->window, &x, &y), 0);
    EXPECT_EQ(position_dialog(mainWindow->window, dialog), 0);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
}
