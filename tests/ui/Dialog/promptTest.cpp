// What the agent may ask in which form, and what comes of prompts that are doubled, overlapping or malformed.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/Dialog/dialogInternal.h"

#include <gmock/gmock.h>

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{

const std::string unlistJoin = "dialogResponse delete_dialog samecon ";

class PromptTest : public DialogSession
{
protected:
    /// Hands several prompts over before the main loop turns.
    void promptTogether(const std::vector<std::string> &lines)
    {
        for (const std::string &words : lines)
            prompt(words);
        drainMainLoop();
    }
};

class QuarterOfAThousand : public PromptTest, public ::testing::WithParamInterface<const char *>
{
};

} // namespace

TEST_F(PromptTest, JoinMessageIsShownOnceThenTheDefaultAgain)
{
    GtkWidget *dialog = open("samecon " + encoded("Hello <b>you</b>, see <a href=\"http://x\">this</a>"));
    EXPECT_EQ(textOf(dialog), "Hello you, see this");
    EXPECT_FALSE(g_joinConfirmationMessage);
    answer(dialog, GTK_RESPONSE_ACCEPT);
    dialog = open("samecon");
    EXPECT_EQ(textOf(dialog), "You are about to join a remote support session. The technician would be able to view "
                              "and access your screen.");
    answer(dialog, GTK_RESPONSE_ACCEPT);
    dialog = open("samecon " + encoded("one") + " two");
    EXPECT_THAT(textOf(dialog), ::testing::StartsWith("You are about")) << "a message is the only argument";
}

TEST_F(PromptTest, JoinMessageThatIsNoMarkupIsShownAsItStands)
{
    EXPECT_EQ(textOf(open("samecon " + encoded("<b>x & y"))), "<b>x & y");
}

TEST_F(PromptTest, JoinMessageWithoutWordsCanNotBeAccepted)
{
    GtkWidget *const dialog = open("samecon !!!");
    EXPECT_EQ(textOf(dialog), "");
    EXPECT_FALSE(gtk_widget_get_sensitive(gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT)));
}

TEST_F(PromptTest, JoinMessageIsMeasuredAsItIsShown)
{
    std::string references;
    for (int i = 0; i < 3000; i++)
        references += "&#10;";
    GtkWidget *const dialog = open("samecon " + encoded("<b>Join?</b>" + references + "and pay"));
    EXPECT_THAT(textOf(dialog), ::testing::StartsWith("Join?\n"));
    EXPECT_FALSE(gtk_widget_get_sensitive(gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT)));
}

TEST_F(PromptTest, WhoeverIsTypingDoesNotAgree)
{
    for (const char *const prompt : {"launchScript clean.sh", "configureURS 9", "rebootPc", "lockuser"}) {
        GtkWidget *const dialog = open(prompt);
        GtkWidget *const focus = gtk_window_get_focus(GTK_WINDOW(dialog));
        EXPECT_EQ(focus, gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_REJECT)) << prompt;
        gtk_widget_destroy(dialog);
    }
}

TEST_F(PromptTest, LinesEndBetweenWords)
{
    const char *const word = "Rechtsschutzversicherungsgesellschaften"; // 39 letters
    for (const auto &[part, mode] :
         {std::pair(word, PANGO_WRAP_WORD), std::pair("WWWWWWWWWWWWWWWW", PANGO_WRAP_WORD_CHAR)}) {
        std::string message;
        for (int i = 0; i < 5; i++)
            message += part + std::string(mode == PANGO_WRAP_WORD ? " " : "");
        GtkWidget *const dialog = open("samecon " + encoded(message));
        GtkWidget *const label = findByName(dialog, "dialogboxlabel");
        EXPECT_EQ(gtk_label_get_line_wrap_mode(GTK_LABEL(label)), mode) << part;
        answer(dialog, GTK_RESPONSE_ACCEPT);
    }
}

TEST_F(PromptTest, DemoSessionIsJoinedInItsOwnWords)
{
    mainWindow->demoSession = "true";
    EXPECT_EQ(textOf(open("samecon")), "You are about to join a Screen sharing session");
}

TEST_F(PromptTest, SecondJoinPromptChangesNothing)
{
    GtkWidget *const dialog = open("samecon " + encoded("first"));
    EXPECT_EQ(open("SAMECON " + encoded("second")), dialog);
    EXPECT_EQ(textOf(dialog), "first");
    EXPECT_EQ(countLogMessages(logPath(), "Prompt confirmation dialog"), 1);
}

TEST_F(PromptTest, TwoJoinPromptsAtOnceOpenOneDialog)
{
    promptTogether({"samecon " + encoded("a"), "samecon " + encoded("b")});
    EXPECT_EQ(dialogs().size(), 1U);
    EXPECT_TRUE(logHas("window already active"));
    answer(dialogs().front(), GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ElementsAre(unlistJoin, "dialogResponse screenSharingApproved"));
    EXPECT_THAT(textOf(open("samecon")), ::testing::StartsWith("You are about")) << "nothing is left of either";
}

TEST_F(PromptTest, RememberedRefusalSaysSo)
{
    GtkWidget *const dialog = open("userConcent " + encoded("May I?") + " c1 camera surplus");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(findButton(dialog, "Remember this option")), TRUE);
    closeByFrame(dialog);
    EXPECT_THAT(answers(), ElementsAre("dialogResponse concentuser disapproved c1 camera true",
                                       "dialogResponse delete_dialog camera "));
    EXPECT_TRUE(logHas("Selected rember me"));
    for (const char *const value : {"c1", "camera"})
        EXPECT_TRUE(logHas(value));
}

TEST_F(PromptTest, FeaturesAreAskedForSideBySideButEachOnce)
{
    promptTogether({"userConcent eA== c camera", "userConcent eA== c mic", "userConcent eA== c CAMERA"});
    EXPECT_EQ(dialogs().size(), 2U);
    EXPECT_THAT(openKinds(), ElementsAre("camera", "mic"));
}

TEST_F(PromptTest, FeatureTestIsAlwaysRefusedBecauseItIsTheRegistrysFirstEntry)
{
    prompt("userConcent eA== c Test");
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_TRUE(logHas("window already active"));
}

TEST_F(PromptTest, ConsentThatCannotBeReadCanOnlyBeRefused)
{
    for (const char *const words : {"userConcent", "userConcent IA== c camera", "userConcent !!! c camera"}) {
        GtkWidget *const dialog = open(words);
        EXPECT_FALSE(gtk_widget_get_sensitive(findButton(dialog, "Yes"))) << words;
        closeByFrame(dialog);
    }
    EXPECT_THAT(answers(), Contains("dialogResponse concentuser disapproved   false"));
    EXPECT_THAT(openKinds(), IsEmpty());
}

TEST_F(PromptTest, TooLongTextsAreScrolledAndCannotBeAgreedTo)
{
    GtkWidget *dialog = open("launchScript " + std::string(1000000, 'x'));
    EXPECT_FALSE(gtk_widget_get_sensitive(findButton(dialog, "Allow")));
    GdkRectangle place = {};
    gdk_window_get_frame_extents(gtk_widget_get_window(dialog), &place);
    EXPECT_LT(place.height, 650);
    EXPECT_LT(place.width, 800);
    answer(dialog, GTK_RESPONSE_REJECT);
    dialog = open("samecon " + encoded(std::string(1000000, 'y')));
    EXPECT_FALSE(gtk_widget_get_sensitive(findButton(dialog, "Join")));
}

TEST_F(PromptTest, ControlIsAskedForOnceAtATime)
{
    addParticipant("Ann", "A1");
    promptTogether({"command a1", "command B2"});
    ASSERT_EQ(dialogs().size(), 1U);
    EXPECT_EQ(countLogMessages(logPath(), "Starting DialogDemo"), 1);
    EXPECT_THAT(textOf(dialogs().front()), ::testing::StartsWith("Ann has requested"));
    answer(dialogs().front(), GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ElementsAre("dialogResponse controlApproved a1"));
    EXPECT_STREQ(mainWindow->demo_tech_access, "");
    EXPECT_TRUE(open("command B2"));
}

TEST_F(PromptTest, ControlGoesToTheParticipantOfItsOwnQuestion)
{
    promptTogether({"command A", "launchScript x"});
    answer(findWindow("Allow remote script execution?"), GTK_RESPONSE_REJECT); // lets the next one ask
    GtkWidget *const first = dialogs().front();
    prompt("command B");
    drainMainLoop();
    ASSERT_EQ(dialogs().size(), 2U);
    forgetLines();
    answer(first, GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ElementsAre("dialogResponse controlApproved A"));
    answer(dialogs().front(), GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ElementsAre("dialogResponse controlApproved A", "dialogResponse controlApproved B"));
}

TEST_F(PromptTest, UnlistedParticipantIsNamedByIdentifier)
{
    for (const char *const words : {"command 42", "command gtklabel"}) {
        GtkWidget *const dialog = open(words);
        EXPECT_TRUE(findLabel(dialog, "")) << describe(dialog);
        EXPECT_THAT(textOf(dialog), ::testing::EndsWith("has requested to control your device.\n Would you like to "
                                                        "accept the request?"));
        answer(dialog, GTK_RESPONSE_REJECT);
    }
}

TEST_F(PromptTest, NewInvitationTakesThePlaceOfTheOpenOne)
{
    GtkWidget *const first = open("acall");
    EXPECT_NE(open("vcall"), nullptr);
    EXPECT_NE(audioVideoDialog, first);
    EXPECT_TRUE(logHas("Closing AV dialog box "));
    EXPECT_THAT(answers(), IsEmpty());
    promptTogether({"acall", "acall", "vcall"});
    EXPECT_EQ(dialogs().size(), 1U);
    prompt("cancelavcall");
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_FALSE(audioVideoDialog);
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(PromptTest, InvitationShownTwiceIsOneDialog)
{
    show_audio_video_recive(mainWindow, "Voice Call");
    show_audio_video_recive(mainWindow, "Video Call");
    EXPECT_EQ(dialogs().size(), 1U);
    answer(audioVideoDialog, GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_THAT(answers(), ElementsAre("dialogResponse AVAccept"));
}

TEST_F(PromptTest, CancellingNoInvitationOnlyLogs)
{
    prompt("CancelAVCall");
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_TRUE(logHas("Audio viode call got cancelled"));
    EXPECT_FALSE(logHas("destroying dialog"));
}

TEST_F(PromptTest, InvitationGoesAwayAfterThreeMinutesWithoutAnAnswer)
{
    GtkWidget *const dialog = open("acall");
    EXPECT_NEAR(remainingMs(dialog), 180000, 5000);
    ASSERT_TRUE(elapse(dialog));
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_FALSE(audioVideoDialog);
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(PromptTest, RebootQuestionGoesAwayAfterTenSecondsWithoutAnAnswer)
{
    GtkWidget *const dialog = open("rebootPc");
    EXPECT_NEAR(remainingMs(dialog), 10000, 2000);
    EXPECT_EQ(open("rebootPc"), dialog);
    EXPECT_TRUE(logHas("dialog box already running"));
    ASSERT_TRUE(elapse(dialog));
    EXPECT_FALSE(rebootConfirmationDialog);
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_TRUE(open("rebootPc"));
}

TEST_F(PromptTest, AnsweredDialogsTakeTheirTimersWithThem)
{
    for (const char *const words : {"rebootPc", "acall"}) {
        GtkWidget *const dialog = open(words);
        const guint timer = GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(dialog), closingTimerKey));
        ASSERT_TRUE(g_main_context_find_source_by_id(nullptr, timer));
        answer(dialog, GTK_RESPONSE_ACCEPT);
        EXPECT_FALSE(g_main_context_find_source_by_id(nullptr, timer)) << words;
    }
}

TEST_F(PromptTest, UnattendedAccessAnswersWithItsOwnArgument)
{
    promptTogether({"configureURS one", "configureURS two", "fileTransferReceive a.txt", "configureURS"});
    const std::vector<GtkWidget *> open = dialogs();
    ASSERT_EQ(open.size(), 4U);
    EXPECT_TRUE(findLabel(FtReceiveDialog, "File Name:  a.txt."));
    forgetLines();
    for (GtkWidget *dialog : open)
        if (dialog != FtReceiveDialog)
            answer(dialog, GTK_RESPONSE_ACCEPT);
    EXPECT_THAT(answers(), ::testing::UnorderedElementsAre("dialogResponse ursConfigureApproved one",
                                                           "dialogResponse ursConfigureApproved two",
                                                           "dialogResponse ursConfigureApproved "));
}

TEST_F(PromptTest, RootAccessUnderWaylandIsNotAnswered)
{
    g_setenv("XDG_SESSION_TYPE", "WayLand", TRUE);
    GtkWidget *const dialog = open("runAsService");
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "ADMIN MODE");
    EXPECT_EQ(textOf(dialog), "Admin mode is not supported under wayland");
    EXPECT_STREQ(gtk_widget_get_name(findButton(dialog, "OK")), "acceptbutton");
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), findButton(dialog, "OK")) << "it grants nothing";
    mainWindow->dialogChecker = true;
    answer(dialog, GTK_RESPONSE_ACCEPT);
    EXPECT_FALSE(mainWindow->dialogChecker);
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_TRUE(logHas(""));
}

TEST_F(PromptTest, UnknownAndEmptyPromptsDoNothing)
{
    for (const char *const words : {"", "nonsense", " samecon", "same", "samecon2"})
        prompt(words);
    EXPECT_THAT(dialogs(), IsEmpty());
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(PromptTest, EveryPromptSurvivesOddFields)
{
    const char *const words[] = {
        "runAsService", "launchScript", "userConcent",  "samecon",  "initswap",           "command", "acall", "vcall",
        "cancelavcall", "rebootPc",     "configureURS", "lockuser", "fileTransferReceive"};
    const std::string tails[] = {"",
                                 " ",
                                 "  ",
                                 " %n%s%d",
                                 " \xff\xfe",
                                 " a b c d e f g",
                                 " " + std::string(30000, 'A'),
                                 " " + encoded("<b>x"),
                                 " <b>x</i>"};
    for (const char *const word : words)
        for (const std::string &tail : tails) {
            prompt(word + tail);
            for (GtkWidget *dialog : dialogs())
                answer(dialog, std::string(word) == "samecon" ? GTK_RESPONSE_ACCEPT : GTK_RESPONSE_DELETE_EVENT);
            EXPECT_THAT(dialogs(), IsEmpty()) << word << tail.substr(0, 20);
        }
    EXPECT_THAT(openKinds(), IsEmpty());
}

TEST_P(QuarterOfAThousand, QuestionsLeaveNothingBehind)
{
    for (int i = 0; i < 250; i++) {
        prompt(GetParam());
        for (GtkWidget *dialog : dialogs()) {
            GtkWidget *gone = dialog;
            g_object_add_weak_pointer(G_OBJECT(dialog), reinterpret_cast<gpointer *>(&gone));
            answer(dialog, i % 3 ? GTK_RESPONSE_ACCEPT : GTK_RESPONSE_DELETE_EVENT);
            EXPECT_FALSE(gone);
        }
    }
    EXPECT_THAT(openKinds(), IsEmpty());
    EXPECT_THAT(dialogs(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Prompts, QuarterOfAThousand,
                         ::testing::Values("userConcent eA== c camera", "launchScript x", "configureURS x",
                                           "command x"));

TEST_F(PromptTest, QuestionsStillComeAfterTheWindowHasGone)
{
    gtk_widget_destroy(mainWindow->window);
    for (const char *const words : {"command x", "runAsService", "launchScript x", "acall", "samecon"}) {
        prompt(words);
        ASSERT_EQ(dialogs().size(), 1U) << words;
        answer(dialogs().front(), GTK_RESPONSE_ACCEPT);
    }
    EXPECT_THAT(answers(), Contains("dialogResponse rasApproved"));
}
