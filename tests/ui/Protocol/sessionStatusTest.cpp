// What each line about the session changes in the window.

#include "src/Protocol/messageHandler.h"

#include "src/support.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace
{

using ::testing::ElementsAre;

class SessionStatus : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        newMessages();
    }
    /// Handles lines on a worker, one after the other; their callbacks wait for the main loop.
    void handle(const std::vector<std::string> &lines)
    {
        std::thread([&] {
            for (const std::string &line : lines)
                EXPECT_FALSE(handleSessionStatusMessage(g_strdup(line.c_str()), mainWindow)) << line;
        }).join();
    }
    /// As `handle`, and runs the callbacks.
    void receive(const std::vector<std::string> &lines)
    {
        handle(lines);
        drainMainLoop();
    }
    std::string status() const { return shownText(mainWindow->statusLabel); }
    const Expander &mailbox() const { return *mainWindow->participants; }
    size_t rows() const { return childrenOf(mainWindow->participantsExpander->expanderContent).size() - 1; }
};

struct Permission {
    const char *feature;
    const char *logged;
    std::atomic<bool> MainWindow::*flag;
    GtkWidget *(*button)(const MainWindow *); ///< null: no button follows
};

const Permission permissions[] = {
    {"annotation", "Annotation is ", &MainWindow::isAnnotationAllowed,
     [](const MainWindow *window) { return window->annotation->button; }},
    {"chat", "chat is ", &MainWindow::isChatAllowed, [](const MainWindow *window) { return window->chat->button; }},
    {"filetransfer", "file transfer is ", &MainWindow::isFileTransferAllowed,
     [](const MainWindow *window) { return window->fileTransfer->button; }},
    {"swapscreen", "swapScreen is ", &MainWindow::isSwapScreenAllowed, nullptr},
};

} // namespace

TEST_F(SessionStatus, ConnectedShowsASharedSession)
{
    for (const char *const line : {"sessionStatus Connected", "sessionStatus CONNECTED", "sessionStatus connected x"}) {
        mainWindow->StartButtonState = 0;
        receive({line});
        EXPECT_EQ(mainWindow->StartButtonState, 1) << line;
        EXPECT_EQ(status(), "In Session");
        EXPECT_EQ(shownFile(mainWindow->statusIcon), "online.png");
        EXPECT_EQ(shownFileOn(mainWindow->startStopSharingButton), "pause.png");
        EXPECT_THAT(newMessages(), ElementsAre(" Screen Sharing is Started", "button state 1"));
    }
}

TEST_F(SessionStatus, DisconnectedShowsAPausedSession)
{
    receive({"sessionStatus Disconnected"});
    EXPECT_EQ(mainWindow->StartButtonState, 2);
    EXPECT_EQ(shownFile(mainWindow->statusIcon), "offline.png");
    EXPECT_THAT(newMessages(), ElementsAre(" Screen Sharing is Stopped", "button state 2"));
}

TEST_F(SessionStatus, FeaturesAreForbiddenAndAllowedAgain)
{
    for (const Permission &each : permissions)
        for (const bool allowed : {false, true}) {
            const std::string word = std::string(allowed ? "ENABLE" : "disable") + each.feature;
            receive({"sessionStatus " + word});
            EXPECT_EQ(mainWindow->*each.flag, allowed) << word;
            EXPECT_THAT(newMessages(), ElementsAre(each.logged + std::string(allowed ? "enabled" : "disabled")));
            if (each.button) {
                EXPECT_EQ(isShown(each.button(mainWindow)), allowed) << word;
            }
        }
}

TEST_F(SessionStatus, SwapScreenAndClipboardChangeNoButton)
{
    receive({"sessionStatus disableswapscreen", "sessionStatus disableClipboard"});
    for (GtkWidget *const button :
         {mainWindow->chat->button, mainWindow->annotation->button, mainWindow->fileTransfer->button,
          mainWindow->participants->button, mainWindow->settingsButton})
        EXPECT_TRUE(isShown(button));
}

TEST_F(SessionStatus, TheClipboardIsForbiddenForGood)
{
    receive({"sessionStatus disableClipboard"});
    EXPECT_FALSE(mainWindow->isClipBoardAllowed);
    EXPECT_THAT(newMessages(), ElementsAre("Clipboard Has been disabled in agent"));
    receive({"sessionStatus enableClipboard"});
    EXPECT_FALSE(mainWindow->isClipBoardAllowed);
    EXPECT_THAT(newMessages(), ElementsAre("Unhandled message  enableClipboard"));
}

TEST_F(SessionStatus, ExitEndsTheProgram)
{
    receive({"sessionStatus EXIT"});
    EXPECT_TRUE(quit_requested());
    EXPECT_THAT(newMessages(), ElementsAre("Exit received closing Ui"));
}

TEST_F(SessionStatus, ATechniciansNameIsDecodedAndShown)
{
    receive({"sessionStatus TECH-NAME John%20Smith"});
    EXPECT_EQ(status(), "John Smith");
    EXPECT_EQ(mainWindow->StartButtonState, 1);
    EXPECT_THAT(newMessages(),
                ElementsAre("Tech name is Null ", "received techincian name John Smith ", "button state 1"));
}

TEST_F(SessionStatus, ANameIsNeverReplaced)
{
    receive({"sessionStatus TECH-NAME John%20Smith"});
    gtk_label_set_text(GTK_LABEL(mainWindow->statusLabel), "something else");
    newMessages();
    receive({"sessionStatus tech-name Ann"});
    EXPECT_EQ(status(), "John Smith");
    EXPECT_THAT(newMessages(), ElementsAre("button state 1"));
}

TEST_F(SessionStatus, ANameInTwoWordsIsRefusedButTheSessionShown)
{
    for (const char *const line : {"sessionStatus TECH-NAME John Smith", "sessionStatus TECH-NAME"}) {
        receive({line});
        EXPECT_EQ(mainWindow->Techname, nullptr) << line;
        EXPECT_EQ(status(), "In Session");
        EXPECT_THAT(newMessages(), ElementsAre("Tech name is Null ", "button state 1"));
    }
}

TEST_F(SessionStatus, ANameThatCanNotBeDecodedStaysUnset)
{
    for (const char *const name : {"%ZZ", "%00", "%"}) {
        receive({std::string("sessionStatus TECH-NAME ") + name});
        EXPECT_EQ(mainWindow->Techname, nullptr) << name;
        EXPECT_EQ(status(), "In Session");
        EXPECT_THAT(newMessages(),
                    ElementsAre("Tech name is Null ", "received techincian name (null) ", "button state 1"));
    }
}

TEST_F(SessionStatus, ANameOfStrangeBytesIsShownRepaired)
{
    receive({"sessionStatus TECH-NAME %FF%3Cb%3E%25s"});
    EXPECT_EQ(status(), "\uFFFD<b>%s");
}

TEST_F(SessionStatus, ANameForgesNoLineOfTheLog)
{
    receive({"sessionStatus TECH-NAME Bob%0A2026/11/21%2012:00:00%20%3CINFO%3E%20[f]:%20forged%1B[2J"});
    EXPECT_THAT(newMessages(), ElementsAre("Tech name is Null ",
                                           "received techincian name Bob\uFFFD2026/11/21 12:00:00 <INFO> [f]: "
                                           "forged\uFFFD[2J ",
                                           "button state 1"));
}

TEST_F(SessionStatus, AParticipantsLineFillsTheMailbox)
{
    struct Case {
        const char *flag;
        bool blockButton;
    };
    for (const Case &each : {Case{" false", true},
                             {" true", false},
                             {" falsetto", true},
                             {" xfalsex", true},
                             {" False", false},
                             {"", false},
                             {" true false", false}}) {
        handle({"sessionStatus participantsAdd Ann%20Lee 42" + std::string(each.flag)});
        EXPECT_STREQ(mailbox().Data, "Ann Lee");
        EXPECT_STREQ(mailbox().identifier, "42");
        EXPECT_EQ(mailbox().blockButton, each.blockButton) << each.flag;
        EXPECT_EQ(newMessages().front(), "received participants");
        drainMainLoop();
        newMessages();
    }
    EXPECT_EQ(rows(), 7u);
}

TEST_F(SessionStatus, ADeletedParticipantsNameStaysEncoded)
{
    handle({"sessionStatus participantsDelete Ann%20Lee 42"});
    EXPECT_STREQ(mailbox().Data, "Ann%20Lee");
    EXPECT_STREQ(mailbox().identifier, "42");
    EXPECT_EQ(newMessages().front(), "received participants delete");
}

TEST_F(SessionStatus, AModifiedParticipantHasIdAndFlagOnly)
{
    for (const auto &[flag, blockButton] :
         {std::pair("false", true), {"true", false}, {"falsetto", true}, {"", false}}) {
        handle({std::string("sessionStatus participantsModify 42 ") + flag});
        EXPECT_STREQ(mailbox().identifier, "42");
        EXPECT_EQ(mailbox().blockButton, blockButton) << flag;
        EXPECT_EQ(newMessages().front(), "received participants modify");
        drainMainLoop();
        newMessages();
    }
}

TEST_F(SessionStatus, ParticipantsComeAndGo)
{
    receive({"sessionStatus participantsAdd Ann 1 false"});
    receive({"sessionStatus PARTICIPANTSADD Bob 2 true"});
    EXPECT_EQ(rows(), 2u);
    EXPECT_EQ(mainWindow->noParticipants, 2);
    receive({"sessionStatus participantsDelete Ann 1"});
    EXPECT_EQ(rows(), 1u);
    EXPECT_NE(findLabel(mainWindow->window, "Bob"), nullptr);
    EXPECT_EQ(findLabel(mainWindow->window, "Ann"), nullptr);
}

TEST_F(SessionStatus, OfTwoParticipantLinesAtOnceTheSecondCounts)
{
    receive({"sessionStatus participantsAdd Ann 1 false", "sessionStatus participantsAdd Bob 2 false"});
    EXPECT_EQ(rows(), 1u);
    EXPECT_EQ(mainWindow->noParticipants, 1);
    EXPECT_NE(findLabel(mainWindow->window, "Bob"), nullptr);
}

TEST_F(SessionStatus, AParticipantWithoutAnIdIsNotShown)
{
    receive({"sessionStatus participantsAdd", "sessionStatus participantsAdd Ann", "sessionStatus participantsDelete",
             "sessionStatus participantsDelete Ann", "sessionStatus participantsModify"});
    EXPECT_EQ(rows(), 0u);
    EXPECT_EQ(mainWindow->noParticipants, 0);
    EXPECT_EQ(shownText(mainWindow->participants->textBar), "No participant has joined");
}

TEST_F(SessionStatus, AParticipantsUndecodableNameIsEmpty)
{
    for (const char *const name : {"%ZZ", "%00", "%"}) {
        handle({std::string("sessionStatus participantsAdd ") + name + " 42 false"});
        EXPECT_STREQ(mailbox().Data, "") << name;
        drainMainLoop();
    }
    EXPECT_EQ(rows(), 3u);
}

TEST_F(SessionStatus, WhatIsUnknownIsLoggedAndChangesNothing)
{
    struct Case {
        const char *line, *word;
    };
    for (const Case &each : {Case{"sessionStatus foo", "foo"},
                             {"sessionStatus foo bar", "foo"},
                             {"sessionStatus", ""},
                             {"sessionStatus ", ""},
                             {"sessionStatus  Connected", ""},
                             {"sessionStatusConnected", ""},
                             {"sessionStatus Connected.", "Connected."},
                             {"sessionStatus %s%n", "%s%n"}}) {
        receive({each.line});
        EXPECT_THAT(newMessages(), ElementsAre(std::string("Unhandled message  ") + each.word)) << each.line;
    }
    EXPECT_EQ(mainWindow->StartButtonState, 0);
    EXPECT_EQ(agent->seen(), "");
}

TEST_F(SessionStatus, NothingIsEverAnswered)
{
    receive({"sessionStatus Connected", "sessionStatus TECH-NAME A", "sessionStatus participantsAdd A 1 false",
             "sessionStatus participantsModify 1 false", "sessionStatus participantsDelete A 1",
             "sessionStatus disconnected"});
    EXPECT_EQ(agent->seen(), "");
}
