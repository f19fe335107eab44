// The status row and the panel buttons, as the agent's reports change them.

#include "src/IdleThread/statusRow.h"

#include "src/support.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace
{

class StatusRow : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        gtk_widget_set_sensitive(mainWindow->startStopSharingButton, FALSE);
        gtk_label_set_text(GTK_LABEL(mainWindow->statusLabel), "before");
    }
    std::string status() const { return shownText(mainWindow->statusLabel); }
    std::string icon() const { return shownFile(mainWindow->statusIcon); }
    bool isButtonReady() const { return gtk_widget_get_sensitive(mainWindow->startStopSharingButton); }
};

} // namespace

TEST_F(StatusRow, ASharedSessionWithoutANameIsInSession)
{
    EXPECT_FALSE(ButtonChangeStart(mainWindow));
    EXPECT_EQ(status(), "In Session");
    EXPECT_EQ(icon(), "online.png");
    EXPECT_TRUE(isButtonReady());
    EXPECT_EQ(mainWindow->StartButtonState, 1);
    EXPECT_EQ(logMessages().back(), "button state 1");
}

TEST_F(StatusRow, ASharedSessionShowsTheTechniciansName)
{
    mainWindow->Techname = g_strdup("John Smith");
    ButtonChangeStart(mainWindow);
    EXPECT_EQ(status(), "John Smith");
}

TEST_F(StatusRow, ANameIsNeverMarkupAndAlwaysText)
{
    for (const char *const name : {"<b>A & B</b> _x", "\xff\xfe", "%s%n"}) {
        replace_text(mainWindow->Techname, name);
        ButtonChangeStart(mainWindow);
        EXPECT_EQ(status(), displayable_text(name).get());
    }
}

TEST_F(StatusRow, AnEmptyNameIsAName)
{
    mainWindow->Techname = g_strdup("");
    ButtonChangeStart(mainWindow);
    EXPECT_EQ(status(), "");
}

TEST_F(StatusRow, ASharedSessionCanBeStopped)
{
    ButtonChangeStart(mainWindow);
    EXPECT_EQ(shownFileOn(mainWindow->startStopSharingButton), "pause.png");
    EXPECT_EQ(accessibleName(mainWindow->startStopSharingButton), "Pause Screen Sharing");
}

TEST_F(StatusRow, APausedSessionKeepsItsText)
{
    EXPECT_FALSE(ButtonChangeStop(mainWindow));
    EXPECT_EQ(status(), "before");
    EXPECT_EQ(icon(), "offline.png");
    EXPECT_TRUE(isButtonReady());
    EXPECT_EQ(mainWindow->StartButtonState, 2);
    EXPECT_EQ(logMessages().back(), "button state 2");
}

TEST_F(StatusRow, EachReportAppliesThePermissions)
{
    using Report = gboolean (*)(MainWindow *);
    for (const Report report : {ButtonChangeStart, ButtonChangeStop}) {
        gtk_widget_hide(mainWindow->annotation->button); // as under Wayland
        mainWindow->isChatAllowed = false;
        report(mainWindow);
        EXPECT_TRUE(isShown(mainWindow->annotation->button));
        EXPECT_FALSE(isShown(mainWindow->chat->button));
        gtk_widget_show(mainWindow->chat->button);
    }
}

TEST_F(StatusRow, ALostConnectionIsNotedInAnOpenBarOnly)
{
    mainWindow->StartButtonState = 1;
    EXPECT_FALSE(noInternet(mainWindow));
    EXPECT_EQ(icon(), "offline.png");
    EXPECT_EQ(shownText(mainWindow->infoBarStruct->infoBarLabel), "Connection down. Retrying...");
    EXPECT_TRUE(gtk_widget_get_visible(mainWindow->infoBarStruct->infoBarLabel));
    EXPECT_FALSE(isShown(mainWindow->infoBarStruct->infoBar));
    EXPECT_EQ(status(), "before");
    EXPECT_EQ(mainWindow->StartButtonState, 1);
    EXPECT_FALSE(isButtonReady());
}

TEST_F(StatusRow, TheNoteOfALostConnectionGoesWithTheBarAfterThreeSeconds)
{
    gtk_widget_show(mainWindow->infoBarStruct->infoBar);
    const gint64 start = g_get_monotonic_time();
    noInternet(mainWindow);
    EXPECT_TRUE(isShown(mainWindow->infoBarStruct->infoBarLabel));
    EXPECT_TRUE(waitUntil([&] { return !isShown(mainWindow->infoBarStruct->infoBar); }));
    EXPECT_GE(g_get_monotonic_time() - start, 2900000);
    EXPECT_TRUE(logHas("Hiding info bar"));
}

TEST_F(StatusRow, AReturnedConnectionShowsTheOnlineIconAndNothingElse)
{
    mainWindow->StartButtonState = 2;
    EXPECT_FALSE(Reconnected(mainWindow));
    EXPECT_EQ(icon(), "online.png");
    EXPECT_EQ(status(), "before");
    EXPECT_FALSE(isButtonReady());
    EXPECT_EQ(mainWindow->StartButtonState, 2);
}

TEST_F(StatusRow, PermissionsShowAndHideThreeButtons)
{
    for (int mask = 0; mask < 8; mask++) {
        mainWindow->isChatAllowed = (mask & 1) != 0;
        mainWindow->isAnnotationAllowed = (mask & 2) != 0;
        mainWindow->isFileTransferAllowed = (mask & 4) != 0;
        EXPECT_EQ(customeRolesHandling(mainWindow), 0);
        EXPECT_EQ(isShown(mainWindow->chat->button), (mask & 1) != 0) << mask;
        EXPECT_EQ(isShown(mainWindow->annotation->button), (mask & 2) != 0) << mask;
        EXPECT_EQ(isShown(mainWindow->fileTransfer->button), (mask & 4) != 0) << mask;
    }
}

TEST_F(StatusRow, PermissionsNeverTouchTheOtherButtons)
{
    gtk_widget_hide(mainWindow->participants->button);
    mainWindow->isClipBoardAllowed = mainWindow->isSwapScreenAllowed = false;
    customeRolesHandling(mainWindow);
    EXPECT_FALSE(isShown(mainWindow->participants->button));
    EXPECT_TRUE(isShown(mainWindow->settingsButton));
}

TEST_F(StatusRow, PermissionsOfAWorkerTakeEffectOnTheMainThread)
{
    mainWindow->isChatAllowed = false;
    std::thread([&] { customeRolesHandling(mainWindow); }).join();
    EXPECT_TRUE(isShown(mainWindow->chat->button));
    drainMainLoop();
    EXPECT_FALSE(isShown(mainWindow->chat->button));
}
