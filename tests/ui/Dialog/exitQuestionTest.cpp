// The customer is asked before the session is closed, and what that means is up to how far the session is.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/support.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using ExitQuestion = DialogSession;

TEST_F(ExitQuestion, BeforeAnybodyConnectedSendsNothing)
{
    show_dialog_exit(mainWindow);
    answer(dialogs().front(), GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_TRUE(quit_requested());
    EXPECT_TRUE(logHas(" User has Closed Session"));
    EXPECT_TRUE(logHas("session is type normal and technician is not connected closing agent"));
}

TEST_F(ExitQuestion, OfAConnectedSessionTellsTheAgent)
{
    mainWindow->isConnected = true;
    show_dialog_exit(mainWindow);
    GtkWidget *const dialog = dialogs().front();
    EXPECT_EQ(textOf(dialog), "Do you want to leave this Session?" + std::string(30, ' '));
    answer(dialog, GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ElementsAre("buttonClicked exit"));
    EXPECT_TRUE(quit_requested());
    EXPECT_TRUE(logHas("session is connected session message"));
}

TEST_F(ExitQuestion, IsAskedAgainForEachRequestAndTakenBack)
{
    show_dialog_exit(mainWindow);
    show_dialog_exit(mainWindow);
    ASSERT_EQ(dialogs().size(), 2U);
    answer(dialogs()[0], GTK_RESPONSE_REJECT);
    closeByFrame(dialogs()[0]);
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_EQ(countLogMessages(logPath(), " User has canceled close"), 2);
    EXPECT_FALSE(quit_requested());
    EXPECT_THAT(answers(), IsEmpty());
}
