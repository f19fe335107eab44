// May the technician read the clipboard? What the agent hears for each answer.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/Utils/dialogPlacement.h"
#include "src/main.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{

const std::string unlisted = "dialogResponse delete_dialog clipboardDialog ";

class ClipboardPermission : public DialogSession
{
protected:
    void ask(const char *text = "pending")
    {
        show_clipboardPermission_dialog(mainWindow, text);
        drainMainLoop();
    }
};

} // namespace

TEST_F(ClipboardPermission, AsksOnceAndKeepsTheNewestText)
{
    ask("one");
    GtkWidget *const dialog = clipboardPermissionDialog;
    ASSERT_TRUE(dialog);
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Clipboard Permission");
    EXPECT_TRUE(findLabel(dialog, "Do you want your Technician to access your system Clipboard"));
    EXPECT_THAT(openKinds(), ElementsAre("clipboardDialog"));
    ask("two");
    EXPECT_EQ(clipboardPermissionDialog, dialog);
    EXPECT_STREQ(mainWindow->clip_Board_Text, "two");
    EXPECT_TRUE(logHas("dialog box already running"));
    ask(mainWindow->clip_Board_Text);
    EXPECT_STREQ(mainWindow->clip_Board_Text, "two");
    ask("");
    EXPECT_STREQ(mainWindow->clip_Board_Text, "");
}

TEST_F(ClipboardPermission, AlwaysIsAnsweredAndKept)
{
    ask();
    answer(clipboardPermissionDialog, GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ElementsAre("clipboard 1", "clipboard 3", unlisted));
    EXPECT_TRUE(mainWindow->allowClipboardAlways);
    EXPECT_EQ(mainWindow->ClipPermissionCount, 0);
    EXPECT_TRUE(logHas("User accepted Clipboard always"));
    EXPECT_FALSE(clipboardPermissionDialog);
}

TEST_F(ClipboardPermission, OnceIsCountedUnderWaylandOnly)
{
    for (const auto &[session, count] : {std::pair{"x11", 0}, {"WAYLAND", 0}, {"wayland", 1}}) {
        g_setenv("XDG_SESSION_TYPE", session, TRUE);
        forgetLines();
        ask();
        answer(clipboardPermissionDialog, GTK_RESPONSE_REJECT);
        EXPECT_THAT(answers(), ElementsAre("clipboard 2", "clipboard 3", unlisted));
        EXPECT_EQ(mainWindow->ClipPermissionCount, count) << session;
    }
    EXPECT_FALSE(mainWindow->allowClipboardAlways);
    EXPECT_TRUE(logHas("User accepted Clipboard once"));
}

TEST_F(ClipboardPermission, ClosingTheFrameRefuses)
{
    ask();
    closeByFrame(clipboardPermissionDialog);
    EXPECT_THAT(answers(), ElementsAre("clipboard 3", unlisted));
    EXPECT_FALSE(mainWindow->allowClipboardAlways);
}

TEST_F(ClipboardPermission, DestructionIsToldOnce)
{
    ask();
    GtkWidget *const dialog = GTK_WIDGET(g_object_ref(clipboardPermissionDialog));
    gtk_widget_destroy(dialog);
    on_destroy_clipboardPermission(dialog, mainWindow);
    g_object_unref(dialog);
    EXPECT_THAT(answers(), ElementsAre("clipboard 3"));
}

TEST_F(ClipboardPermission, IsAskedEvenWhenAFeatureTookItsName)
{
    add_active_dialog(mainWindow->active_dialogs, &mainWindow->mutex, "CLIPBOARDdialog");
    ask();
    EXPECT_TRUE(clipboardPermissionDialog);
    EXPECT_TRUE(logHas("window already exists"));
    answer(clipboardPermissionDialog, GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(openKinds(), IsEmpty());
}
