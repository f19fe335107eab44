// The customer waits for a swap of screens, and hears how it went.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/main.h"
#include "src/support.h"

#include <gmock/gmock.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{

class SwapTest : public DialogSession
{
protected:
    void SetUp() override
    {
        DialogSession::SetUp();
        replace_text(mainWindow->Techname, "Ann Lee");
    }
    void request(const std::string &words = "initswap Bob")
    {
        prompt(words);
        drainMainLoop();
    }
    std::string notice() { return shownText(mainWindow->infoBarStruct->infoBarLabel); }
};

} // namespace

TEST_F(SwapTest, WaitingDialogNamesTheTechnicianAndIsAnnouncedByItsText)
{
    request();
    ASSERT_TRUE(swapDialog);
    EXPECT_TRUE(findLabel(swapDialog, " Requesting Ann Lee to share screen          "));
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(swapDialog)), "");
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(swapDialog)), "Requesting Ann Lee to share screen");
    EXPECT_STREQ(gtk_widget_get_name(swapDialog), "swapDialogbox");
    EXPECT_STREQ(swapTechnicianName, "Bob");
}

TEST_F(SwapTest, UnknownTechnicianIsPrintedAsNull)
{
    replace_text(mainWindow->Techname, nullptr);
    request("initswap");
    EXPECT_TRUE(findLabel(swapDialog, " Requesting (null) to share screen          ")) << describe(swapDialog);
}

TEST_F(SwapTest, ApprovalClosesTheDialogAndTheWindowButNotTheProgram)
{
    request();
    forgetLines();
    reportSwap("APPROVED");
    drainMainLoop();
    EXPECT_FALSE(swapDialog);
    EXPECT_TRUE(findWindows("Brindle").empty());
    EXPECT_FALSE(quit_requested());
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_TRUE(logHas(" Swap Screen has been approved"));
    EXPECT_THAT(openKinds(), ElementsAre("initswap")) << "no second request in this session";
    request();
    EXPECT_FALSE(swapDialog);
    for (const char *const outcome : {"approved", "swapRejected", "toManyUsers"})
        reportSwap(outcome);
    drainMainLoop();
}

TEST_F(SwapTest, RejectionClosesTheDialogAndSaysSo)
{
    request();
    forgetLines();
    reportSwap("SwapRejected");
    drainMainLoop();
    EXPECT_FALSE(swapDialog);
    EXPECT_EQ(notice(), "Technician has rejected screen sharing request.");
    EXPECT_TRUE(isShown(mainWindow->infoBarStruct->infoBar));
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_TRUE(logHas(" Swap Screen has been Rejected"));
}

TEST_F(SwapTest, RejectionOfNothingOnlySaysSo)
{
    reportSwap("swapRejected");
    drainMainLoop();
    EXPECT_TRUE(logHas("destroying dialog"));
    EXPECT_EQ(notice(), "Technician has rejected screen sharing request.");
}

TEST_F(SwapTest, TooManyTechniciansLeaveTheDialogOpen)
{
    request();
    reportSwap("toManyUsers");
    drainMainLoop();
    EXPECT_TRUE(swapDialog);
    EXPECT_EQ(notice(), "Swap screen cannot be initiated as there is more than one technician");
    EXPECT_TRUE(logHas("swap screen not support in demo"));
}

TEST_F(SwapTest, UnknownOutcomesAreOnlyLogged)
{
    request();
    for (const char *const words : {"foo %n", "", " approved"})
        reportSwap(words);
    drainMainLoop();
    EXPECT_TRUE(swapDialog);
    EXPECT_TRUE(logHas("unhandled message initSwap foo %n"));
}

TEST_F(SwapTest, OutcomeAfterTheCustomerGaveUpIsHarmless)
{
    request();
    answer(swapDialog, GTK_RESPONSE_REJECT);
    EXPECT_FALSE(swapDialog);
    EXPECT_THAT(openKinds(), IsEmpty());
    reportSwap("swapRejected");
    drainMainLoop();
    request();
    EXPECT_TRUE(swapDialog) << "giving up lets the next request come";
}
