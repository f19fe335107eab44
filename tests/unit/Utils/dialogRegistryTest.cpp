// A kind of dialog is open at most once, and the agent hears when one has gone.

#include "src/Utils/dialogPlacement.h"

#include "src/Utils/pipeTransport.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace
{

class DialogRegistry : public TestSession
{
protected:
    int add(const char *kind) { return add_active_dialog(mainWindow->active_dialogs, &mainWindow->mutex, kind); }
    int isActive(const char *kind) { return is_dialog_active(mainWindow->active_dialogs, &mainWindow->mutex, kind); }
    int remove(const char *kind) { return delete_active_dialog(mainWindow->active_dialogs, &mainWindow->mutex, kind); }
};

} // namespace

TEST_F(DialogRegistry, AKindOpensOnce)
{
    EXPECT_EQ(add("clipboardDialog"), 1);
    EXPECT_EQ(add("clipboardDialog"), 0);
    EXPECT_EQ(add("CLIPBOARDdialog"), 0);
    EXPECT_EQ(add("samecon"), 1);
}

TEST_F(DialogRegistry, KindsAreComparedWithoutRegardToCase)
{
    add("clipboardDialog");
    EXPECT_EQ(isActive("CLIPBOARDDIALOG"), 1);
    EXPECT_EQ(isActive("clipboardDialo"), 0);
    EXPECT_EQ(isActive("samecon"), 0);
}

TEST_F(DialogRegistry, CanBeAskedUnderTheLock)
{
    add("initswap");
    g_mutex_lock(&mainWindow->mutex);
    EXPECT_EQ(is_dialog_active(mainWindow->active_dialogs, nullptr, "initswap"), 1);
    g_mutex_unlock(&mainWindow->mutex);
}

TEST_F(DialogRegistry, AKindThatHasGoneOpensAgain)
{
    add("samecon");
    EXPECT_EQ(remove("SAMECON"), 1);
    EXPECT_EQ(isActive("samecon"), 0);
    EXPECT_EQ(add("samecon"), 1);
}

TEST_F(DialogRegistry, TheAgentHearsOfEveryEnd)
{
    add("fileChooserDialog");
    EXPECT_EQ(remove("fileChooserDialog"), 1);
    sentLines(1);
    EXPECT_EQ(agent->seen(), "dialogResponse delete_dialog fileChooserDialog \n");
}

TEST_F(DialogRegistry, TheAgentHearsOfAKindThatWasNeverOpen)
{
    EXPECT_EQ(remove("neverAdded"), 1);
    sentLines(1);
    EXPECT_EQ(agent->seen(), "dialogResponse delete_dialog neverAdded \n");
}

TEST_F(DialogRegistry, TheFirstEntryIsNeverRemoved)
{
    GList *const list = mainWindow->active_dialogs;
    remove("test");
    EXPECT_EQ(isActive("test"), 1);
    EXPECT_EQ(mainWindow->active_dialogs, list);
    EXPECT_EQ(g_list_length(list), 1u);
}

TEST_F(DialogRegistry, OnlyOneEntryGoesAtATime)
{
    for (const char *const kind : {"samecon", "initswap", "serviceDialog"})
        add(kind);
    remove("initswap");
    EXPECT_EQ(isActive("samecon"), 1);
    EXPECT_EQ(isActive("initswap"), 0);
    EXPECT_EQ(isActive("serviceDialog"), 1);
}

TEST_F(DialogRegistry, KeepsAKindWhoseTextHasGone)
{
    std::string kind = "feature";
    add(kind.c_str());
    kind = "xxxxxxx";
    EXPECT_EQ(isActive("feature"), 1);
}

TEST_F(DialogRegistry, TwoThreadsNeverOpenTheSameKind)
{
    std::atomic<int> opened = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; t++)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; i++)
                opened += add(("kind" + std::to_string(i)).c_str());
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(opened, 200);
}

TEST_F(DialogRegistry, CanBeAskedWhileAnEndWaitsForTheAgent)
{
    add("samecon");
    agent.reset();
    std::thread closing([&] { remove("samecon"); });
    EXPECT_TRUE(waitUntil([&] { return isActive("samecon") == 0; }));
    EXPECT_EQ(add("initswap"), 1);
    agent = std::make_unique<PipeReader>(uiPipe());
    closing.join();
    EXPECT_THAT(sentLines(1), ::testing::ElementsAre("dialogResponse delete_dialog samecon "));
}
