// The controls of the window and the lines they send.

#include "src/controls.h"

#include "src/IdleThread/IdleThread.h"
#include "src/Utils/Utils.h"
#include "src/support.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using ::testing::ElementsAre;

class SharingButton : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        showSharingButton(mainWindow);
        setImageFromFile(mainWindow->statusIcon, mainWindow->imageOnline);
        newMessages();
    }
    void click() { on_start_clicked(mainWindow->startStopSharingButton, mainWindow); }
    std::string status() const { return shownText(mainWindow->statusLabel); }
    std::string picture() const { return shownFileOn(mainWindow->startStopSharingButton); }
    std::string tooltip() const { return tooltipOf(mainWindow->startStopSharingButton); }
    bool isReady() const { return gtk_widget_get_sensitive(mainWindow->startStopSharingButton); }
};

class Controls : public WindowSession
{
};

} // namespace

TEST_F(SharingButton, StartUpOnlyWaitsForTheAgent)
{
    click();
    EXPECT_EQ(status(), "Connecting...");
    EXPECT_EQ(mainWindow->StartButtonState, 1);
    EXPECT_FALSE(isReady());
    EXPECT_EQ(shownFile(mainWindow->statusIcon), "online.png");
    EXPECT_THAT(newMessages(), ElementsAre("Agent has been Started"));
    EXPECT_EQ(agent->seen(), "");
}

TEST_F(SharingButton, AClickWhileSharingPauses)
{
    mainWindow->StartButtonState = 1;
    click();
    EXPECT_EQ(status(), "Sharing has been disabled!");
    EXPECT_EQ(mainWindow->StartButtonState, 2);
    EXPECT_FALSE(isReady());
    EXPECT_EQ(tooltip(), "Resume Screen Sharing");
    EXPECT_EQ(picture(), "play.png");
    EXPECT_EQ(shownFile(mainWindow->statusIcon), "offline.png");
    EXPECT_THAT(newMessages(), ElementsAre(" Stop button has been pressed "));
    EXPECT_THAT(sentLines(1), ElementsAre("buttonClicked stop"));
}

TEST_F(SharingButton, TooltipFollowsReportsOnceThereIsOne)
{
    mainWindow->StartButtonState = 1;
    ButtonChangeStop(mainWindow);
    EXPECT_EQ(tooltip(), "") << "a click brings it";
    click();
    EXPECT_EQ(tooltip(), "Pause Screen Sharing");
    ButtonChangeStop(mainWindow);
    EXPECT_EQ(tooltip(), "Resume Screen Sharing") << "as the picture says";
}

TEST_F(SharingButton, AClickWhilePausedResumes)
{
    mainWindow->StartButtonState = 2;
    click();
    EXPECT_EQ(status(), "Connecting");
    EXPECT_EQ(mainWindow->StartButtonState, 1);
    EXPECT_FALSE(isReady());
    EXPECT_EQ(tooltip(), "Pause Screen Sharing");
    EXPECT_EQ(picture(), "pause.png");
    EXPECT_EQ(shownFile(mainWindow->statusIcon), "offline.png");
    EXPECT_THAT(newMessages(), ElementsAre(" Start Button has been pressed"));
    EXPECT_THAT(sentLines(1), ElementsAre("buttonClicked start"));
}

TEST_F(SharingButton, ResumingShowsAKnownTechnician)
{
    mainWindow->Techname = g_strdup("John <b>Smith</b>");
    mainWindow->StartButtonState = 2;
    click();
    EXPECT_EQ(status(), "John <b>Smith</b>");
}

TEST_F(SharingButton, ThreeClicksSendStopStartStop)
{
    mainWindow->StartButtonState = 1;
    for (int i = 0; i < 3; i++)
        click();
    EXPECT_THAT(sentLines(3), ElementsAre("buttonClicked stop", "buttonClicked start", "buttonClicked stop"));
    EXPECT_EQ(mainWindow->StartButtonState, 2);
}

TEST_F(SharingButton, InAnyOtherStateNothingHappens)
{
    gtk_label_set_text(GTK_LABEL(mainWindow->statusLabel), "before");
    for (const int state : {3, -1, 100}) {
        mainWindow->StartButtonState = state;
        click();
        EXPECT_EQ(mainWindow->StartButtonState, state);
    }
    EXPECT_EQ(status(), "before");
    EXPECT_TRUE(isReady());
    EXPECT_EQ(agent->seen(), "");
    EXPECT_THAT(newMessages(), ::testing::IsEmpty());
}

TEST_F(SharingButton, MakesFreshPicturesAtEveryClick)
{
    mainWindow->StartButtonState = 1;
    click();
    GtkWidget *const start = keep_widget(mainWindow->startSharingImage);
    GtkWidget *const stop = keep_widget(mainWindow->stopSharingImage);
    click();
    EXPECT_NE(mainWindow->startSharingImage, start);
    EXPECT_NE(mainWindow->stopSharingImage, stop);
    EXPECT_EQ(imageOn(mainWindow->startStopSharingButton), mainWindow->stopSharingImage);
}

TEST_F(SharingButton, AHundredClicksAndReportsKeepInStep)
{
    mainWindow->StartButtonState = 1;
    for (int i = 0; i < 50; i++) {
        click();
        ButtonChangeStop(mainWindow);
        click();
        ButtonChangeStart(mainWindow);
    }
    EXPECT_EQ(sentLines(100).size(), 100u);
    EXPECT_EQ(picture(), "pause.png");
}

TEST_F(SharingButton, HasAnAccessibleNameThatSaysWhatItDoes)
{
    mainWindow->StartButtonState = 1;
    showSharingButton(mainWindow);
    EXPECT_EQ(accessibleName(mainWindow->startStopSharingButton), "Pause Screen Sharing");
    click();
    EXPECT_EQ(accessibleName(mainWindow->startStopSharingButton), "Resume Screen Sharing");
}

TEST_F(SharingButton, WaitsForTheAgentAfterItShowedTheNewState)
{
    mainWindow->StartButtonState = 1;
    agent.reset();
    g_idle_add(
        [](gpointer) -> gboolean {
            request_quit(); // nobody reads: the end of the program is what gets the click through
            return G_SOURCE_REMOVE;
        },
        nullptr);
    drainMainLoop();
    click();
    EXPECT_EQ(status(), "Sharing has been disabled!");
    EXPECT_TRUE(logHas("error opening file Operation canceled"));
}

TEST_F(Controls, TheSettingsEntryAsksForTheWebSite)
{
    openWebsite(nullptr, mainWindow);
    EXPECT_THAT(sentLines(1), ElementsAre("buttonClicked settings"));
}

TEST_F(Controls, TheCloseButtonAsksAndLeavesTheWindow)
{
    EXPECT_TRUE(on_window_main_delete(mainWindow->window, nullptr, mainWindow));
    drainMainLoop();
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    EXPECT_TRUE(g_list_find_custom(windows, nullptr, [](const void *window, const void *) {
        return int(!findLabel(GTK_WIDGET(window), "Do you want to leave this Session?" + std::string(30, ' ')));
    }));
    EXPECT_TRUE(isShown(mainWindow->window));
    EXPECT_EQ(agent->seen(), "");
}

TEST_F(Controls, AMenuPopsUpAtItsButton)
{
    GtkWidget *const menu = gtk_menu_new();
    g_object_ref_sink(menu);
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_menu_item_new_with_label("Go to Website"));
    gtk_widget_show_all(menu);
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(mainWindow->window); }));
    showPopup(mainWindow->settingsButton, menu);
    EXPECT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(menu); }));
    EXPECT_FALSE(logHas("error loading function"));
    gtk_widget_destroy(menu);
    g_object_unref(menu);
}
