// Which questions can be answered from the keyboard in which session.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/main.h"

#include <gmock/gmock.h>

namespace
{

class NormalSession : public DialogSession
{
};
class OtherSession : public DialogSession
{
protected:
    OtherSession() : DialogSession("ras") {}
};

GdkEventKey keyEvent(guint key)
{
    GdkEventKey event = {};
    event.type = GDK_KEY_PRESS;
    event.keyval = key;
    return event;
}

/// Buttons of a dialog that the keyboard can reach.
std::vector<std::string> reachable(GtkWidget *dialog)
{
    std::vector<std::string> found;
    for (GtkWidget *widget : allWidgets(dialog))
        if (GTK_IS_BUTTON(widget) && (gtk_widget_get_can_focus(widget) || gtk_widget_get_can_default(widget)))
            found.push_back(shownText(widget));
    return found;
}

/// Presses real keys, once the window manager has given the dialog the focus.
void press(GtkWidget *dialog, const std::vector<std::string> &keys)
{
    ASSERT_TRUE(waitUntil([&] { return gtk_window_is_active(GTK_WINDOW(dialog)); }));
    std::string command = "xdotool key --clearmodifiers";
    for (const std::string &key : keys)
        command += " " + key;
    ASSERT_TRUE(g_spawn_command_line_async(command.c_str(), nullptr));
}

/// Waits for the question with the window's own title; null when it doesn't come.
GtkWidget *awaitQuestion()
{
    GtkWidget *question = nullptr;
    waitUntil([&] {
        for (GtkWidget *window : findWindows("Brindle"))
            question = GTK_IS_DIALOG(window) ? window : question;
        return question != nullptr;
    });
    return question;
}

/// Every key that activates or moves to something somewhere in a toolkit's dialog.
const std::vector<std::string> everyKey = {"Return", "KP_Enter", "space", "KP_Space",    "ISO_Enter",  "Tab",  "KP_Tab",
                                           "Left",   "Right",    "Up",    "Down",        "shift+Tab",  "Home", "End",
                                           "F10",    "alt+y",    "alt+a", "ctrl+Return", "alt+Return", "y",    "Menu"};

constexpr guint answeringKeys[] = {GDK_KEY_Return, GDK_KEY_KP_Enter, GDK_KEY_space, GDK_KEY_Tab,
                                   GDK_KEY_Left,   GDK_KEY_Up,       GDK_KEY_Right, GDK_KEY_Down};

} // namespace

TEST_F(NormalSession, SwallowsTheKeysThatAnswer)
{
    for (const guint key : answeringKeys) {
        GdkEventKey event = keyEvent(key);
        EXPECT_TRUE(Key_Press(mainWindow->window, &event, mainWindow)) << key;
    }
    for (const guint key : {GDK_KEY_Escape, GDK_KEY_a, GDK_KEY_KP_Space}) {
        GdkEventKey event = keyEvent(key);
        EXPECT_FALSE(Key_Press(mainWindow->window, &event, mainWindow)) << key;
    }
}

TEST_F(OtherSession, SwallowsNoKey)
{
    for (const guint key : answeringKeys) {
        GdkEventKey event = keyEvent(key);
        EXPECT_FALSE(Key_Press(mainWindow->window, &event, mainWindow)) << key;
    }
}

TEST_F(NormalSession, NoGuardedButtonTakesTheFocus)
{
    prompt("userConcent eA== c camera");
    prompt("runAsService");
    prompt("initswap Bob");
    drainMainLoop();
    show_clipboardPermission_dialog(mainWindow, "text");
    int count = 0;
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    for (const GList *each = windows; each; each = each->next)
        if (GTK_IS_DIALOG(each->data)) {
            count++;
            EXPECT_THAT(reachable(GTK_WIDGET(each->data)), ::testing::IsEmpty());
            EXPECT_FALSE(gtk_window_activate_default(GTK_WINDOW(each->data)));
        }
    EXPECT_EQ(count, 4);
}

TEST_F(NormalSession, NoRealKeyAnswersAGuardedQuestionButEscapeRefusesIt)
{
    prompt("runAsService");
    GtkWidget *const dialog = awaitQuestion();
    ASSERT_TRUE(dialog);
    std::vector<std::string> keys = everyKey;
    keys.push_back("Escape");
    press(dialog, keys);
    EXPECT_TRUE(waitUntil([&] { return openKinds().empty(); }));
    EXPECT_THAT(answers(), ::testing::ElementsAre("dialogResponse delete_dialog serviceDialog "));
}

TEST_F(OtherSession, NoRealKeyGrantsTheClipboardToWhoeverIsTyping)
{
    show_clipboardPermission_dialog(mainWindow, "text");
    press(clipboardPermissionDialog, {"Return", "KP_Enter", "space", "Escape"});
    EXPECT_TRUE(waitUntil([] { return !clipboardPermissionDialog; }));
    EXPECT_EQ(answers().front(), "clipboard 3");
}

TEST_F(OtherSession, RealReturnDoesNotGrantRootAccessToWhoeverIsTyping)
{
    prompt("runAsService");
    GtkWidget *const dialog = awaitQuestion();
    ASSERT_TRUE(dialog);
    press(dialog, {"Return"});
    EXPECT_TRUE(waitUntil([&] { return openKinds().empty(); }));
    EXPECT_THAT(answers(), ::testing::ElementsAre("dialogResponse delete_dialog serviceDialog "));
}

TEST_F(NormalSession, UnguardedQuestionsTakeTheKeyboard)
{
    EXPECT_THAT(reachable(raise("launchScript x", "Allow remote script execution?")),
                ::testing::UnorderedElementsAre("Allow", "Deny"));
}

TEST_F(OtherSession, GuardedQuestionsTakeTheKeyboard)
{
    show_clipboardPermission_dialog(mainWindow, "text");
    EXPECT_THAT(reachable(clipboardPermissionDialog), ::testing::UnorderedElementsAre("Allow always", "Allow once"));
}

TEST_F(NormalSession, PositionIsReportedForConfigureEventsOnly)
{
    forgetLines();
    GdkEvent event = {};
    event.configure.type = GDK_CONFIGURE;
    event.configure.x = -3;
    event.configure.y = 4;
    event.configure.width = 360;
    event.configure.height = 120;
    EXPECT_FALSE(get_window_coordinates(nullptr, &event, "camera"));
    event.type = GDK_MAP;
    EXPECT_FALSE(get_window_coordinates(nullptr, &event, "camera"));
    EXPECT_FALSE(get_window_coordinates(nullptr, nullptr, "camera"));
    settle();
    EXPECT_EQ(agent->lines().front(), "dialogResponse dialog_position camera -3 4 360 120");
    EXPECT_THAT(reportedKinds(), ::testing::ElementsAre("camera"));
}
