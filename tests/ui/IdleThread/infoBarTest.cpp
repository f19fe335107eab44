// The notice above the window's content.

#include "src/IdleThread/infoBar.h"

#include "src/IdleThread/widgetCallbacks.h"
#include "src/support.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

class Notice : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        bar = mainWindow->infoBarStruct;
        m_start = g_get_monotonic_time();
    }
    bool isBarShown() const { return isShown(bar->infoBar); }
    std::string text() const { return shownText(bar->infoBarLabel); }
    ::testing::AssertionResult goes() const
    {
        return waitUntil([&] { return !isBarShown(); });
    }
    gint64 passedMs() const { return (g_get_monotonic_time() - m_start) / 1000; }

    InfoBar *bar = nullptr;

private:
    gint64 m_start = 0;
};

} // namespace

TEST_F(Notice, ShowsItsTextForThreeSeconds)
{
    EXPECT_EQ(startInfoBar(bar, "a notice"), 0);
    EXPECT_TRUE(isBarShown());
    EXPECT_EQ(text(), "a notice");
    EXPECT_TRUE(goes());
    EXPECT_GE(passedMs(), 2900);
    EXPECT_TRUE(logHas("Hiding info bar"));
}

TEST_F(Notice, ASecondOneReplacesTheFirstAndGoesEarlyWithIt)
{
    startInfoBar(bar, "first");
    ASSERT_TRUE(waitUntil([&] { return passedMs() >= 1000; }));
    startInfoBar(bar, "second");
    EXPECT_EQ(text(), "second");
    EXPECT_TRUE(goes());
    EXPECT_LT(passedMs(), 3900);
    EXPECT_TRUE(waitUntil([&] { return countLogMessages(logPath(), "Hiding info bar") == 2; }));
}

TEST_F(Notice, OfBlockedInputStays)
{
    setInfoBarText(bar, "Press Esc key to enable input device");
    EXPECT_FALSE(isBarShown());
    EXPECT_FALSE(BlockinputInfoBar(bar));
    EXPECT_EQ(text(), "Press Esc key to enable input device");
    ASSERT_TRUE(waitUntil([&] { return passedMs() >= 3300; }));
    EXPECT_TRUE(isBarShown());
    EXPECT_FALSE(hideInfoBar(bar));
    EXPECT_FALSE(isBarShown());
}

TEST_F(Notice, OfBlockedInputGoesWithAnEarlierOnesTimer)
{
    startInfoBar(bar, "first");
    setInfoBarText(bar, "Press Esc key to enable input device");
    BlockinputInfoBar(bar);
    EXPECT_TRUE(goes());
}

TEST_F(Notice, ReturnsNothingToRepeat)
{
    EXPECT_FALSE(PopUpInfoBar(bar));
    EXPECT_FALSE(BlockinputInfoBar(bar));
    EXPECT_FALSE(hideInfoBar(bar));
}

TEST_F(Notice, OfAWorkerAppearsWhenTheMainLoopTurns)
{
    std::thread([&] { startInfoBar(bar, "from a worker"); }).join();
    EXPECT_FALSE(isBarShown());
    drainMainLoop();
    EXPECT_TRUE(isBarShown());
    EXPECT_EQ(text(), "from a worker");
}

TEST_F(Notice, IsHiddenByAWorkerWhenTheMainLoopTurns)
{
    startInfoBar(bar, "x");
    std::thread([&] { hideInfoBar(bar); }).join();
    drainMainLoop();
    EXPECT_FALSE(isBarShown());
}

TEST_F(Notice, IsNeverMarkupAndAlwaysText)
{
    for (const char *const shown : {"<b>A & B</b> _x", "\xff\xfe", "%s%n", ""}) {
        startInfoBar(bar, shown);
        EXPECT_EQ(text(), displayable_text(shown).get());
    }
}

TEST_F(Notice, KeepsItsOwnCopyOfTheText)
{
    std::string given = "given";
    setInfoBarText(bar, given.c_str());
    given = "taken";
    PopUpInfoBar(bar);
    EXPECT_EQ(text(), "given");
}

TEST_F(Notice, AboutNothingIsEmpty)
{
    PopUpInfoBar(bar);
    EXPECT_EQ(text(), "");
}

TEST_F(Notice, MayComeFromManyThreadsAtOnce)
{
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; i++)
        workers.emplace_back([this] {
            for (int n = 0; n < 50; n++)
                startInfoBar(bar, "busy");
        });
    for (std::thread &worker : workers)
        worker.join();
    drainMainLoop();
    EXPECT_EQ(text(), "busy");
}

TEST_F(Notice, ADialogIsDestroyedOnDemand)
{
    GtkWidget *dialog = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    g_object_add_weak_pointer(G_OBJECT(dialog), reinterpret_cast<gpointer *>(&dialog));
    EXPECT_FALSE(destroyDialogBox(dialog));
    EXPECT_EQ(dialog, nullptr);
    EXPECT_TRUE(logHas("destroying dialog"));
    EXPECT_FALSE(destroyDialogBox(nullptr));
}

TEST_F(Notice, AWidgetIsHiddenOnDemand)
{
    EXPECT_FALSE(minimizeExpander(mainWindow->statusLabel));
    EXPECT_FALSE(isShown(mainWindow->statusLabel));
}
