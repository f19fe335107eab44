// Placing real windows beside the control window.

#include "src/Utils/dialogPlacement.h"

#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

class WindowPlacement : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        ASSERT_TRUE(waitUntil([&] { return frameOfParent().width > 350 && frameOfParent().height < 200; }));
        dialog = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_window_set_default_size(GTK_WINDOW(dialog), 300, 200);
        newMessages();
    }
    GdkRectangle frameOfParent() const
    {
        GdkRectangle frame = {};
        gdk_window_get_frame_extents(gtk_widget_get_window(parent()), &frame);
        return frame;
    }
    static std::string pair(const char *text, int first, int second)
    {
        g_autofree char *line = g_strdup_printf("%s(%d,%d)", text, first, second);
        return line;
    }
    GtkWidget *parent() const { return mainWindow->window; }
    /// No window: a label.
    GtkWidget *noWindow() const { return mainWindow->statusLabel; }

    GtkWidget *dialog = nullptr;
    int x = 77, y = 88;
};

constexpr char fallback[] = "Using fallback position (0,0) - no suitable space found";
constexpr char badDialog[] = "Invalid dialog window pointer";

} // namespace

TEST_F(WindowPlacement, APositionIsReadFromAShownWindow)
{
    EXPECT_EQ(get_window_position(parent(), &x, &y), 1);
    int realX = 0, realY = 0;
    gtk_window_get_position(GTK_WINDOW(parent()), &realX, &realY);
    EXPECT_EQ(x, realX);
    EXPECT_EQ(y, realY);
    EXPECT_THAT(newMessages(),
                ::testing::ElementsAre("Window position: x=" + std::to_string(x) + ", y=" + std::to_string(y)));
}

TEST_F(WindowPlacement, NoWindowHasNoPosition)
{
    for (GtkWidget *const wrong : {static_cast<GtkWidget *>(nullptr), noWindow()}) {
        EXPECT_EQ(get_window_position(wrong, &x, &y), 0);
        EXPECT_THAT(newMessages(), ::testing::ElementsAre("Invalid window pointer"));
    }
    EXPECT_EQ(x, 77);
}

TEST_F(WindowPlacement, APositionNeedsBothPlacesToGoTo)
{
    EXPECT_EQ(get_window_position(parent(), nullptr, &y), 0);
    EXPECT_EQ(get_window_position(parent(), &x, nullptr), 0);
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Invalid coordinate pointers", "Invalid coordinate pointers"));
    EXPECT_EQ(choose_dialog_position(parent(), dialog, nullptr, &y), 0);
    EXPECT_EQ(choose_dialog_position(parent(), dialog, &x, nullptr), 0);
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Invalid coordinate pointers", "Invalid coordinate pointers"));
    EXPECT_EQ(x, 77);
    EXPECT_EQ(y, 88);
}

TEST_F(WindowPlacement, AWindowThatIsNotThereYetIsAtTheOrigin)
{
    EXPECT_EQ(get_window_position(dialog, &x, &y), 0);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Window is not realized yet"));
}

TEST_F(WindowPlacement, ADialogIsPlacedByTheFrameOfItsParent)
{
    const GdkRectangle frame = frameOfParent();
    const Size screen = readScreenSize();
    const Place expected = placeDialog({frame.x, frame.y, frame.width, frame.height}, {300, 200}, screen);
    EXPECT_EQ(choose_dialog_position(parent(), dialog, &x, &y), 1);
    EXPECT_EQ(x, expected.x);
    EXPECT_EQ(y, expected.y);
    g_autofree char *size = g_strdup_printf("Screen dimensions: %dx%d", screen.width, screen.height);
    g_autofree char *extents =
        g_strdup_printf("Using frame extents: pos(%d,%d) size(%dx%d)", frame.x, frame.y, frame.width, frame.height);
    EXPECT_THAT(newMessages(), ::testing::IsSupersetOf({std::string(size), std::string("Dialog dimensions: 300x200"),
                                                        std::string(extents)}));
}

TEST_F(WindowPlacement, WhereADialogWentIsLogged)
{
    const Size screen = readScreenSize();
    struct Case {
        int height;
        const char *line;
    };
    const int parentY = screen.height / 2;
    gtk_window_move(GTK_WINDOW(parent()), 100, parentY);
    ASSERT_TRUE(waitUntil([&] {
        get_window_position(parent(), &x, &y);
        return y >= parentY - 40;
    }));
    for (const Case &each :
         {Case{50, "Placing dialog above parent at "}, {screen.height - 2, "Centering dialog on screen at "}}) {
        gtk_window_set_default_size(GTK_WINDOW(dialog), 300, each.height);
        newMessages();
        EXPECT_EQ(position_dialog(parent(), dialog), 1);
        EXPECT_EQ(choose_dialog_position(parent(), dialog, &x, &y), 1);
        EXPECT_THAT(newMessages(),
                    ::testing::IsSupersetOf({pair(each.line, x, y), pair("Dialog positioned at ", x, y)}));
    }
}

TEST_F(WindowPlacement, ADialogWithoutRoomGoesToTheCorner)
{
    gtk_window_set_default_size(GTK_WINDOW(dialog), 300, readScreenSize().height + 1);
    EXPECT_EQ(position_dialog(parent(), dialog), 0);
    EXPECT_THAT(newMessages(), ::testing::IsSupersetOf({std::string(fallback), pair("Dialog positioned at ", 0, 0)}));
}

TEST_F(WindowPlacement, ADialogWithoutAParentOnTheScreenGoesToTheCorner)
{
    GtkWidget *const hidden = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    for (GtkWidget *const other : {static_cast<GtkWidget *>(nullptr), hidden, noWindow()}) {
        x = y = 5;
        EXPECT_EQ(choose_dialog_position(other, dialog, &x, &y), 0);
        EXPECT_EQ(x, 0);
        EXPECT_EQ(y, 0);
        EXPECT_EQ(newMessages().back(), fallback);
        EXPECT_EQ(position_dialog(other, dialog), 0);
        EXPECT_EQ(newMessages().back(), pair("Dialog positioned at ", 0, 0));
    }
}

TEST_F(WindowPlacement, NoDialogIsNotMoved)
{
    for (GtkWidget *const wrong : {static_cast<GtkWidget *>(nullptr), noWindow()}) {
        EXPECT_EQ(choose_dialog_position(parent(), wrong, &x, &y), 0);
        EXPECT_EQ(x, 0);
        EXPECT_EQ(y, 0);
        EXPECT_EQ(position_dialog(parent(), wrong), 0);
        set_dialog_position(wrong, 1, 1);
        EXPECT_THAT(newMessages(), ::testing::ElementsAre(badDialog, badDialog, badDialog));
    }
}

TEST_F(WindowPlacement, ADialogIsMovedWhereItIsTold)
{
    gtk_widget_show(dialog);
    drainMainLoop();
    set_dialog_position(dialog, 120, 130);
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Dialog positioned at (120,130)"));
    EXPECT_TRUE(waitUntil([&] {
        gtk_window_get_position(GTK_WINDOW(dialog), &x, &y);
        return x == 120 && y == 130;
    }));
}
