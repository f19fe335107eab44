// What the agent's lines show in the window, sent through the dispatcher on its own thread.

#include "src/thread/thread.h"

#include "src/sessionState.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <thread>

namespace
{

using ::testing::ElementsAre;

class AgentLine : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        newMessages();
    }
    /// Dispatches a text on a worker; what it shows waits for the main loop.
    void dispatch(const std::string &text)
    {
        pushText(pipeMessageQueue, OwnedText(g_strdup(text.c_str())));
        pushText(pipeMessageQueue, OwnedText(g_strdup(stopSentinel)));
        ThreadData data = {mainWindow, chatWindow, nullptr};
        std::thread(messageParser, &data).join();
    }
    void receive(const std::string &text)
    {
        dispatch(text);
        drainMainLoop();
    }
    std::vector<std::string> newMessages()
    {
        std::vector<std::string> all = WindowSession::newMessages();
        all.erase(std::remove(all.begin(), all.end(), "closing thread"), all.end());
        return all;
    }
    std::string notice() const { return shownText(mainWindow->infoBarStruct->infoBarLabel); }
    bool isNoticeShown() const { return isShown(mainWindow->infoBarStruct->infoBar); }
    bool isRecordingShown() const { return isShown(mainWindow->onDemandScreenSharingImage); }
};

} // namespace

TEST_F(AgentLine, ConnectionLostShowsTheOfflineIcon)
{
    receive("sessionStatus Connected\n");
    newMessages();
    for (const char *const line : {"connectionLost\n", "CONNECTIONLOST"}) {
        receive(line);
        EXPECT_EQ(shownFile(mainWindow->statusIcon), "offline.png");
        EXPECT_EQ(notice(), "Connection down. Retrying...");
        EXPECT_THAT(newMessages(), ElementsAre("connection Lost"));
    }
}

TEST_F(AgentLine, AnUnsupportedComputerIsNoted)
{
    receive("NOT32\n");
    EXPECT_TRUE(isNoticeShown());
    EXPECT_EQ(notice(), "Your computer does not support Annotation.");
    EXPECT_THAT(newMessages(), ElementsAre("Cannot start annotation as this system doenn't support 32 bit"));
}

TEST_F(AgentLine, BlockedInputIsNotedUntilItIsUnblocked)
{
    receive("blockInput\n");
    EXPECT_TRUE(isNoticeShown());
    EXPECT_EQ(notice(), "Press Esc key to enable input device");
    EXPECT_THAT(newMessages(), ElementsAre("blockInput"));
    receive("UnblockInput\n");
    EXPECT_FALSE(isNoticeShown());
    EXPECT_THAT(newMessages(), ElementsAre("UnblockInput", "Hiding info bar"));
}

TEST_F(AgentLine, TheLastOfOneTextCounts)
{
    receive("not32\nblockInput\n");
    EXPECT_EQ(notice(), "Press Esc key to enable input device");
    receive("unblockInput\nblockInput\n");
    EXPECT_TRUE(isNoticeShown());
    receive("blockInput\nnot32\nunblockInput\n");
    EXPECT_FALSE(isNoticeShown());
    receive("ONDEMAND START\nONDEMAND STOP\nONDEMAND START");
    EXPECT_TRUE(isRecordingShown());
    receive("sessionStatus disablechat\nsessionStatus enablechat\n");
    EXPECT_TRUE(isShown(mainWindow->chat->button));
}

TEST_F(AgentLine, OnDemandSharingIsIndicated)
{
    for (const char *const line : {"ONDEMAND START", "ONDEMAND STARTED again\n"}) {
        receive(line);
        EXPECT_TRUE(isRecordingShown()) << line;
        receive("ONDEMAND STOP now");
        EXPECT_FALSE(isRecordingShown()) << line;
    }
    for (const char *const line : {"ondemand start", "ONDEMAND", "xONDEMAND START"}) {
        receive(line);
        EXPECT_FALSE(isRecordingShown()) << line;
    }
    EXPECT_EQ(gtk_widget_get_parent(mainWindow->onDemandScreenSharing), nullptr);
}

TEST_F(AgentLine, NothingIsShownBeforeTheMainLoopTurns)
{
    dispatch("not32\nONDEMAND START\nsessionStatus Connected\n");
    EXPECT_FALSE(isNoticeShown());
    EXPECT_FALSE(isRecordingShown());
    EXPECT_EQ(mainWindow->StartButtonState, 0);
    drainMainLoop();
    EXPECT_TRUE(isNoticeShown());
    EXPECT_TRUE(isRecordingShown());
    EXPECT_EQ(mainWindow->StartButtonState, 1);
}

TEST_F(AgentLine, AClipboardLineAsksThoughItIsForbidden)
{
    const auto windows = [] {
        g_autoptr(GList) list = gtk_window_list_toplevels();
        size_t shown = 0;
        for (const GList *each = list; each; each = each->next)
            shown += gtk_widget_get_visible(GTK_WIDGET(each->data)) ? 1 : 0;
        return shown;
    };
    receive("sessionStatus disableClipboard\n");
    const size_t before = windows();
    receive("clipboardAnything\n");
    EXPECT_EQ(windows(), before + 1);
}

TEST_F(AgentLine, AnArSessionIsLoggedWithTheWindowsPlace)
{
    receive("AR_SESSION https://example.org/%s?x=1\n");
    // The window manager may still be moving the window: the line tells the place that was looked up for it.
    const std::vector<std::string> messages = newMessages();
    const auto place = std::ranges::find_if(
        messages, [](const std::string &message) { return message.starts_with("Window position: "); });
    ASSERT_NE(place, messages.end());
    int x = 0, y = 0;
    ASSERT_EQ(sscanf(place->c_str(), "Window position: x=%d, y=%d", &x, &y), 2);
    g_autofree char *line = g_strdup_printf("AR Session initiate message received at position x:%d y:%d : %s", x, y,
                                            "AR_SESSION https://example.org/%s?x=1");
    EXPECT_THAT(messages, ::testing::Contains(std::string(line)));
}

TEST_F(AgentLine, ExitEndsTheMainLoop)
{
    dispatch("exit\n");
    run_main_loop();
    EXPECT_EQ(gtk_main_level(), 0u);
    EXPECT_THAT(newMessages(), ElementsAre("closing agent"));
}

TEST_F(AgentLine, ExitInTheMiddleOfALoopEndsIt)
{
    std::thread worker([&] { dispatch("EXIT"); });
    run_main_loop();
    worker.join();
    EXPECT_TRUE(quit_requested());
}

TEST_F(AgentLine, StatusAndParticipantsOfOneTextAllShow)
{
    receive("sessionStatus Connected\nsessionStatus TECH-NAME Ann%20Lee\nsessionStatus participantsAdd Ann%20Lee 1 "
            "false\n");
    EXPECT_EQ(shownText(mainWindow->statusLabel), "Ann Lee");
    EXPECT_EQ(mainWindow->noParticipants, 1);
    EXPECT_TRUE(mainWindow->isConnected);
}

TEST_F(AgentLine, HostileLinesShowNothing)
{
    const std::string before = describe(mainWindow->window);
    for (const char *const line : {"\xff\xfe\x01", "%s%n%d", "<b>sessionStatus</b> Connected", "sessionStatus \xff",
                                   "initSwap \xff", "dialogPrompt \xff", "sessionStatus participantsDelete \xff \xff",
                                   "sessionStatus participantsModify \xff false"})
        receive(line);
    EXPECT_EQ(describe(mainWindow->window), before);
}
