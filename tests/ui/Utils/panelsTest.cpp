// Opening and closing the panels, from the toolbar and by their headers.

#include "src/Utils/panels.h"

#include "src/Utils/Utils.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

constexpr char closedArrow[] = "pan-end-symbolic 4";     // button size
constexpr char openArrow[] = "pan-down-symbolic 4";      // button size
constexpr char smallOpenArrow[] = "pan-down-symbolic 2"; // small toolbar size

class Panels : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        newMessages();
    }
    int windowHeight() const
    {
        int width = 0, height = 0;
        gtk_window_get_size(GTK_WINDOW(mainWindow->window), &width, &height);
        return height;
    }
    void toggleParticipants() { expandParticipantsWidget(mainWindow->participants->button, mainWindow); }
    void toggleChat() { expandWidget(mainWindow->chat->button, mainWindow); }
    void toggleFileTransfer() { expandFileTransfer(mainWindow->fileTransfer->button, mainWindow); }
};

static_assert(GTK_ICON_SIZE_BUTTON == 4 && GTK_ICON_SIZE_SMALL_TOOLBAR == 2);

} // namespace

TEST_F(Panels, ParticipantsOpenWithTheirContentAndLine)
{
    toggleParticipants();
    EXPECT_TRUE(isShown(mainWindow->participants->contentArea));
    EXPECT_TRUE(isShown(mainWindow->participantsExpander->expanderContent));
    EXPECT_TRUE(isShown(mainWindow->participants->seperator));
    EXPECT_EQ(mainWindow->participants->buttonState, 1);
    EXPECT_TRUE(mainWindow->participantsExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->participantsExpander->arrowImage), openArrow);
}

TEST_F(Panels, ParticipantsCloseWithAnOpenArrow)
{
    toggleParticipants();
    toggleParticipants();
    EXPECT_FALSE(isShown(mainWindow->participants->contentArea));
    EXPECT_FALSE(isShown(mainWindow->participants->seperator));
    EXPECT_EQ(mainWindow->participants->buttonState, 2);
    EXPECT_TRUE(mainWindow->participantsExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->participantsExpander->arrowImage), openArrow);
}

TEST_F(Panels, ParticipantsNoticeShowsWhileNobodyIsThere)
{
    toggleParticipants();
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("no of participants :0 ", "no participants present"));
    EXPECT_TRUE(isShown(mainWindow->participants->textBar));
    toggleParticipants();
    EXPECT_THAT(newMessages(), ::testing::IsEmpty());
    mainWindow->noParticipants = 1;
    toggleParticipants();
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("no of participants :1 ", "participants present"));
    EXPECT_FALSE(isShown(mainWindow->participants->textBar));
}

TEST_F(Panels, ChatOpens)
{
    toggleChat();
    EXPECT_TRUE(isShown(mainWindow->chat->contentArea));
    EXPECT_TRUE(isShown(mainWindow->chatExpander->expanderContent));
    EXPECT_EQ(mainWindow->chat->buttonState, 1);
    EXPECT_TRUE(mainWindow->chatExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->chatExpander->arrowImage), smallOpenArrow);
}

TEST_F(Panels, ChatClosesWithAnOpenArrowAndKeepsItsLine)
{
    toggleChat();
    toggleChat();
    EXPECT_FALSE(isShown(mainWindow->chat->contentArea));
    EXPECT_EQ(mainWindow->chat->buttonState, 2);
    EXPECT_FALSE(mainWindow->chatExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->chatExpander->arrowImage), smallOpenArrow);
    EXPECT_TRUE(isShown(mainWindow->chat->seperator));
}

TEST_F(Panels, FileTransferOpensWithItsLine)
{
    toggleFileTransfer();
    EXPECT_TRUE(isShown(mainWindow->fileTransfer->contentArea));
    EXPECT_TRUE(isShown(mainWindow->fileTransfer->seperator));
    EXPECT_EQ(mainWindow->fileTransfer->buttonState, 1);
    EXPECT_TRUE(mainWindow->fileTransferExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->fileTransferExpander->arrowImage), smallOpenArrow);
}

TEST_F(Panels, FileTransferClosesWithAnOpenArrow)
{
    toggleFileTransfer();
    toggleFileTransfer();
    EXPECT_FALSE(isShown(mainWindow->fileTransfer->contentArea));
    EXPECT_FALSE(isShown(mainWindow->fileTransfer->seperator));
    EXPECT_EQ(mainWindow->fileTransfer->buttonState, 2);
    EXPECT_TRUE(mainWindow->fileTransferExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->fileTransferExpander->arrowImage), smallOpenArrow);
}

TEST_F(Panels, SendFileGivesWayToTheNoticeFromTwoTechniciansOn)
{
    for (int present = 0; present < 4; present++) {
        mainWindow->noParticipants = present;
        mainWindow->fileTransfer->buttonState = 2;
        toggleFileTransfer();
        EXPECT_EQ(isShown(mainWindow->sendFile), present < 2) << present;
        EXPECT_EQ(isShown(mainWindow->fileTransfer->textBar), present >= 2) << present;
    }
}

TEST_F(Panels, FileTransferHeaderFollowsTheNumberOfTechnicians)
{
    toggleFileTransfer();
    for (int present = 0; present < 4; present++) {
        mainWindow->noParticipants = present;
        fileTransferExpandCallback(mainWindow);
        EXPECT_EQ(isShown(mainWindow->sendFile), present < 2) << present;
        EXPECT_EQ(isShown(mainWindow->fileTransfer->textBar), present >= 2) << present;
    }
}

TEST_F(Panels, ParticipantsHeaderFollowsTheNumberOfTechnicians)
{
    toggleParticipants();
    newMessages();
    for (int present : {0, 1, 2, 0}) {
        mainWindow->noParticipants = present;
        participantsExpandCallback(mainWindow);
        EXPECT_EQ(isShown(mainWindow->participants->textBar), present == 0) << present;
        EXPECT_THAT(newMessages(),
                    ::testing::ElementsAre("no of participants :" + std::to_string(present) + " ",
                                           present ? "participants present" : "no participants present"));
    }
}

TEST_F(Panels, AnyStateButHiddenCloses)
{
    for (const int state : {1, 0, 7}) {
        mainWindow->chat->buttonState = state;
        toggleChat();
        EXPECT_EQ(mainWindow->chat->buttonState, 2) << state;
    }
}

TEST_F(Panels, AHeaderClickHidesTheContentOnly)
{
    toggleParticipants();
    EXPECT_FALSE(clickHeader(mainWindow->participants->contentArea));
    EXPECT_TRUE(isShown(mainWindow->participants->contentArea));
    EXPECT_TRUE(isShown(findByName(mainWindow->participants->contentArea, "expander")));
    EXPECT_FALSE(isShown(mainWindow->participantsExpander->expanderContent));
    EXPECT_FALSE(mainWindow->participantsExpander->isVisible);
    EXPECT_EQ(shownIcon(mainWindow->participantsExpander->arrowImage), closedArrow);
    EXPECT_EQ(mainWindow->participants->buttonState, 1);
}

TEST_F(Panels, ASecondHeaderClickShowsTheContentAgain)
{
    for (const guint button : {1u, 2u, 3u}) {
        toggleChat();
        clickHeader(mainWindow->chat->contentArea, button);
        EXPECT_FALSE(isShown(mainWindow->chatExpander->expanderContent)) << button;
        clickHeader(mainWindow->chat->contentArea, button);
        EXPECT_TRUE(isShown(mainWindow->chatExpander->expanderContent)) << button;
        EXPECT_TRUE(mainWindow->chatExpander->isVisible);
        EXPECT_EQ(shownIcon(mainWindow->chatExpander->arrowImage), openArrow);
        toggleChat();
    }
}

TEST_F(Panels, AHeaderClickRefreshesTheNotices)
{
    mainWindow->noParticipants = 2;
    toggleParticipants();
    toggleFileTransfer();
    for (int i = 0; i < 2; i++) {
        clickHeader(mainWindow->participants->contentArea);
        clickHeader(mainWindow->fileTransfer->contentArea);
    }
    EXPECT_FALSE(isShown(mainWindow->participants->textBar));
    EXPECT_TRUE(isShown(mainWindow->fileTransfer->textBar));
    EXPECT_FALSE(isShown(mainWindow->sendFile));
}

TEST_F(Panels, ACollapsedPanelOpensWholeFromTheToolbar)
{
    toggleParticipants();
    clickHeader(mainWindow->participants->contentArea);
    toggleParticipants();
    toggleParticipants();
    EXPECT_TRUE(isShown(mainWindow->participantsExpander->expanderContent));
    EXPECT_TRUE(mainWindow->participantsExpander->isVisible);
}

TEST_F(Panels, TheWindowGrowsAndShrinksWithThem)
{
    ASSERT_TRUE(waitUntil([&] { return windowHeight() > 30 && windowHeight() < 200; }));
    using Toggle = void (*)(GtkWidget *, MainWindow *);
    for (const Toggle toggle : {expandParticipantsWidget, expandWidget, expandFileTransfer}) {
        const int closed = windowHeight();
        toggle(nullptr, mainWindow);
        EXPECT_TRUE(waitUntil([&] { return windowHeight() > closed; }));
        toggle(nullptr, mainWindow);
        EXPECT_TRUE(waitUntil([&] { return windowHeight() == closed; },
                              [&] { return std::to_string(windowHeight()) + " not " + std::to_string(closed); }));
    }
}

namespace
{

MainWindow *toldAbout = nullptr;

void noteToggle(MainWindow *mainwindow)
{
    toldAbout = mainwindow;
}

class NewPanel : public WindowSession
{
protected:
    /// A panel in a window of its own.
    GtkWidget *build(const char *title, bool withButton, ToggleCallback callback)
    {
        content = gtk_label_new("content");
        GtkWidget *const panel = createExapnder(
            {title, withButton ? mainWindow->chatTranscriptImagePath : nullptr, &header, content, callback},
            mainWindow);
        window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_container_add(GTK_CONTAINER(window), panel);
        gtk_widget_show_all(window);
        return panel;
    }
    CustomExpander header = {};
    GtkWidget *content = nullptr;
    GtkWidget *window = nullptr;
};

} // namespace

TEST_F(NewPanel, IsAHeaderAboveItsContent)
{
    GtkWidget *const panel = build("Title", false, nullptr);
    ASSERT_EQ(childrenOf(panel).size(), 2u);
    GtkWidget *const row = childrenOf(panel)[0];
    EXPECT_STREQ(gtk_widget_get_name(row), "expander");
    EXPECT_EQ(childrenOf(panel)[1], content);
    EXPECT_EQ(packingOf(row), "start 0");
    EXPECT_EQ(packingOf(content), "start 0");
    EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(panel)), GTK_ORIENTATION_VERTICAL);
    EXPECT_EQ(header.expanderContent, content);
    EXPECT_FALSE(header.isVisible);
    EXPECT_EQ(header.rightButton, nullptr);
    EXPECT_EQ(header.arrowButton, nullptr);
}

TEST_F(NewPanel, HasItsArrowBeforeItsTitle)
{
    GtkWidget *const panel = build("Title", false, nullptr);
    GtkWidget *const eventBox = childrenOf(childrenOf(panel)[0])[0];
    EXPECT_TRUE(gtk_event_box_get_above_child(GTK_EVENT_BOX(eventBox)));
    const std::vector<GtkWidget *> parts = childrenOf(gtk_bin_get_child(GTK_BIN(eventBox)));
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0], header.arrowImage);
    EXPECT_STREQ(gtk_widget_get_name(parts[0]), "expanderButton");
    EXPECT_EQ(marginsOf(parts[0]), "4 0 0 0");
    EXPECT_EQ(shownIcon(parts[0]), "pan-end-symbolic 0");
    EXPECT_EQ(shownText(parts[1]), "Title");
    for (GtkWidget *const part : {parts[0], parts[1], eventBox})
        EXPECT_EQ(packingOf(part), "start 0");
}

TEST_F(NewPanel, TheRightButtonIsOutsideTheClickableHeader)
{
    GtkWidget *const panel = build("Title", true, nullptr);
    const std::vector<GtkWidget *> row = childrenOf(childrenOf(panel)[0]);
    ASSERT_EQ(row.size(), 2u);
    EXPECT_EQ(row[1], header.rightButton);
    EXPECT_EQ(packingOf(header.rightButton), "end 0");
    EXPECT_EQ(gtk_button_get_relief(GTK_BUTTON(header.rightButton)), GTK_RELIEF_NONE);
    EXPECT_EQ(gtk_button_get_image(GTK_BUTTON(header.rightButton)), header.Rightimage);
    EXPECT_EQ(shownFile(header.Rightimage), "download.png");
}

TEST_F(NewPanel, TellsItsOwnerAfterEachClick)
{
    GtkWidget *const panel = build("Title", false, noteToggle);
    toldAbout = nullptr;
    clickHeader(panel);
    EXPECT_EQ(toldAbout, mainWindow);
}

TEST_F(NewPanel, NeedsNobodyToTell)
{
    GtkWidget *const panel = build("Title", false, nullptr);
    EXPECT_FALSE(clickHeader(panel));
    EXPECT_TRUE(header.isVisible);
}

TEST_F(NewPanel, ATitlesUnderscoreIsAMnemonic)
{
    GtkWidget *const panel = build("_Title", false, nullptr);
    EXPECT_NE(findLabel(panel, "Title"), nullptr);
}
