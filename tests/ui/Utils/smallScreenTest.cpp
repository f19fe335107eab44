// The control window where the screen has not the room for all its panels.

#include "src/Utils/smallScreen.h"

#include "src/IdleThread/IdleThread.h"
#include "src/Utils/Utils.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gtest/gtest.h>

namespace
{

constexpr int tooMany = 40;

class SmallScreen : public WindowSession
{
protected:
    void addParticipants(int count)
    {
        for (int number = 0; number < count; number++) {
            fillMailbox(number);
            AddParticipants(mainWindow);
        }
    }
    void removeParticipants(int count)
    {
        for (int number = 0; number < count; number++) {
            fillMailbox(number);
            DeleteParticipants(mainWindow);
        }
    }
    GtkWidget *actionBox() const { return findByName(mainWindow->window, "actionContainer"); }
    /// What the panels scroll in, or null.
    GtkWidget *scroller() const
    {
        return gtk_widget_get_ancestor(mainWindow->participants->contentArea, GTK_TYPE_SCROLLED_WINDOW);
    }
    int windowHeight() const
    {
        GdkRectangle outside = {};
        gdk_window_get_frame_extents(gtk_widget_get_window(mainWindow->window), &outside);
        return outside.height;
    }
    static int screenHeight()
    {
        GdkRectangle area = {};
        gdk_monitor_get_workarea(gdk_display_get_monitor(gdk_display_get_default(), 0), &area);
        return area.height;
    }
    ::testing::AssertionResult becomesHigh(int height) const
    {
        return waitUntil([&] { return isLaidOut() && windowHeight() == height; },
                         [&] { return std::to_string(windowHeight()) + " instead of " + std::to_string(height); });
    }
    /// The toolkit has given the window the height that the window manager lets it have.
    bool isLaidOut() const
    {
        return gtk_widget_get_allocated_height(mainWindow->window) ==
               gdk_window_get_height(gtk_widget_get_window(mainWindow->window));
    }
    /// With its frame, the window has all the height that it asks for, and this is it.
    int settledHeight() const
    {
        int asked = 0;
        gtk_widget_get_preferred_height(mainWindow->window, nullptr, &asked);
        EXPECT_TRUE(
            waitUntil([&] { return isLaidOut() && gtk_widget_get_allocated_height(mainWindow->window) == asked; }));
        return windowHeight();
    }
    /// All of a widget stands in what can be seen of the panels.
    bool isInView(GtkWidget *widget) const
    {
        int x = 0, top = 0;
        gtk_widget_translate_coordinates(widget, scroller(), 0, 0, &x, &top);
        return top >= 0 && top + gtk_widget_get_allocated_height(widget) <= gtk_widget_get_allocated_height(scroller());
    }

private:
    void fillMailbox(int number)
    {
        mainWindow->participants->Data = g_strdup_printf("Ann %d", number);
        mainWindow->participants->identifier = g_strdup_printf("id%d", number);
    }
};

} // namespace

TEST_F(SmallScreen, LeavesTheWindowAsItIsWhileThereIsRoom)
{
    const std::vector<GtkWidget *> rows = childrenOf(actionBox());
    addParticipants(3);
    for (void (*const open)(GtkWidget *, MainWindow *) : {expandParticipantsWidget, expandWidget, expandFileTransfer})
        open(nullptr, mainWindow);
    EXPECT_LT(settledHeight(), screenHeight());
    EXPECT_EQ(scroller(), nullptr);
    EXPECT_EQ(childrenOf(actionBox()), rows);
}

TEST_F(SmallScreen, ScrollsThePanelsBetweenToolbarAndStatus)
{
    addParticipants(tooMany);
    expandParticipantsWidget(nullptr, mainWindow);
    EXPECT_TRUE(becomesHigh(screenHeight()));
    for (GtkWidget *const panel : {mainWindow->participants->contentArea, mainWindow->chat->contentArea,
                                   mainWindow->fileTransfer->contentArea, mainWindow->annotation->contentArea})
        EXPECT_TRUE(gtk_widget_is_ancestor(panel, scroller()));
    for (GtkWidget *const fixed : {mainWindow->settingsButton, mainWindow->startStopSharingButton})
        EXPECT_EQ(gtk_widget_get_ancestor(fixed, GTK_TYPE_SCROLLED_WINDOW), nullptr);
    EXPECT_EQ(gtk_widget_get_allocated_width(mainWindow->window), 350);
}

TEST_F(SmallScreen, GrowsWithAnOpenListUntilThereIsNoRoom)
{
    expandParticipantsWidget(nullptr, mainWindow);
    drainMainLoop();
    addParticipants(tooMany);
    EXPECT_TRUE(becomesHigh(screenHeight()));
}

TEST_F(SmallScreen, GivesRoomToANotice)
{
    addParticipants(tooMany);
    expandParticipantsWidget(nullptr, mainWindow);
    EXPECT_TRUE(becomesHigh(screenHeight()));
    GtkWidget *const bar = mainWindow->infoBarStruct->infoBar;
    startInfoBar(mainWindow->infoBarStruct, "The technician has asked for the screen.");
    EXPECT_TRUE(waitUntil([&] { return gtk_widget_get_allocated_height(bar) > 20; }));
    EXPECT_TRUE(becomesHigh(screenHeight()));
    EXPECT_TRUE(isShown(bar));
}

TEST_F(SmallScreen, HasItsOldHeightWhenTheRoomDoesAgain)
{
    addParticipants(2);
    expandParticipantsWidget(nullptr, mainWindow);
    const int before = settledHeight();
    addParticipants(tooMany);
    EXPECT_TRUE(becomesHigh(screenHeight()));
    removeParticipants(tooMany);
    EXPECT_TRUE(becomesHigh(before));
}

TEST_F(SmallScreen, ShowsAPanelThatOpens)
{
    addParticipants(tooMany);
    expandParticipantsWidget(nullptr, mainWindow);
    EXPECT_TRUE(becomesHigh(screenHeight()));
    expandFileTransfer(nullptr, mainWindow);
    EXPECT_TRUE(waitUntil([&] { return isInView(mainWindow->fileTransfer->contentArea); }));
    UpdateChat(chatWindow); // a message opens its panel
    EXPECT_TRUE(waitUntil([&] { return isInView(mainWindow->chat->contentArea); }));
    expandWidget(nullptr, mainWindow);
    drainMainLoop();
    EXPECT_TRUE(becomesHigh(screenHeight()));
}

TEST_F(SmallScreen, LeavesTheKeyboardWhereItWas)
{
    GtkWidget *const send = mainWindow->sendFile;
    expandFileTransfer(nullptr, mainWindow);
    gtk_widget_grab_focus(send);
    expandParticipantsWidget(nullptr, mainWindow);
    addParticipants(1);
    drainMainLoop();
    ASSERT_EQ(gtk_window_get_focus(GTK_WINDOW(mainWindow->window)), send);
    addParticipants(tooMany);
    EXPECT_TRUE(waitUntil([&] { return scroller() != nullptr; }));
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(mainWindow->window)), send);
}
