// What a session begins with.

#include "src/sessionState.h"

#include "tests/support/lastingRecord.h"
#include "tests/support/testSession.h"

#include <gtest/gtest.h>

namespace
{

/// A record in which nothing has its default.
MainWindow *newFilledRecord()
{
    auto *const window = newLastingRecord<MainWindow>();
    window->rolechange = "1";
    window->homeDir = "/home/x";
    window->productName = "x";
    static char name[] = "Ann";
    window->clip_agent_text = g_strdup("copied");
    window->Techname = name;
    window->StartButtonState = 2;
    window->noParticipants = 3;
    window->isConnected = window->dialogChecker = window->allowClipboardAlways = true;
    return window;
}

} // namespace

TEST(SessionDefaults, TextsAreAsDocumented)
{
    MainWindow *const window = newFilledRecord();
    EXPECT_EQ(initializeVariables(window), 0);
    EXPECT_STREQ(window->rolechange, "0");
    EXPECT_STREQ(window->homeDir, "");
    EXPECT_STREQ(window->productName, "Brindle");
    EXPECT_STREQ(window->clip_agent_text, "");
    EXPECT_EQ(window->Techname, nullptr);
}

TEST(SessionDefaults, NobodyIsThereAndNothingIsPending)
{
    MainWindow *const window = newFilledRecord();
    initializeVariables(window);
    EXPECT_EQ(window->StartButtonState, 0);
    EXPECT_EQ(window->noParticipants, 0);
    EXPECT_FALSE(window->isConnected);
    EXPECT_FALSE(window->dialogChecker);
    EXPECT_FALSE(window->allowClipboardAlways);
}

TEST(SessionDefaults, EveryFeatureIsAllowed)
{
    auto *const window = newLastingRecord<MainWindow>();
    initializeVariables(window);
    for (const std::atomic<bool> *const allowed :
         {&window->isClipBoardAllowed, &window->isAnnotationAllowed, &window->isSwapScreenAllowed,
          &window->isChatAllowed, &window->isFileTransferAllowed})
        EXPECT_TRUE(*allowed);
}

TEST(SessionDefaults, WorkersMayRun)
{
    auto *const window = newLastingRecord<MainWindow>();
    g_threadChecker = false;
    initializeVariables(window);
    EXPECT_TRUE(g_threadChecker);
}

TEST(SessionDefaults, TheRegistryOfDialogsHoldsItsOneLastingEntry)
{
    auto *const window = newLastingRecord<MainWindow>();
    initializeVariables(window);
    ASSERT_EQ(g_list_length(window->active_dialogs), 1u);
    EXPECT_STREQ(static_cast<const char *>(window->active_dialogs->data), "test");
}

TEST(SessionQueues, GiveTextsInTheOrderInWhichTheyCame)
{
    createQueues();
    for (const char *const text : {"first", "", "third"})
        pushText(pipeMessageQueue, OwnedText(g_strdup(text)));
    for (const char *const text : {"first", "", "third"})
        EXPECT_STREQ(popText(pipeMessageQueue).get(), text);
    EXPECT_NE(messageQueue, pipeMessageQueue);
}

TEST(SessionDefaults, TheStopTextIsTheAgreedOne)
{
    EXPECT_STREQ(stopSentinel, "application-stop");
}

namespace
{
class EndedSession : public TestSession
{
};
} // namespace

TEST_F(EndedSession, WhatWorkersMayStillUseStaysThere)
{
    mainWindow->Techname = g_strdup("Ann");
    free_memory(mainWindow, chatWindow);
    EXPECT_STREQ(mainWindow->Techname, "Ann");
    EXPECT_NE(pipeMessageQueue, nullptr);
    EXPECT_NE(messageQueue, nullptr);
    EXPECT_EQ(mainWindow->imageOffline, nullptr);
}
