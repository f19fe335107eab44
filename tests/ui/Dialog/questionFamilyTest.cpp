// Every question of the family as the customer reads it and as the agent hears of it: one row for each.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/Utils/pipeTransport.h"
#include "src/main.h"
#include "src/support.h"

#include <gmock/gmock.h>

#include <algorithm>

using ::testing::Each;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;

namespace
{

constexpr int frameResponse = GTK_RESPONSE_DELETE_EVENT;

struct Button {
    std::string label;
    int response;
    std::string name; ///< "GtkButton" without a name of its own
};

/// One way to answer a question.
struct Way {
    int response;
    std::vector<std::string> lines;
    std::vector<std::string> logged;
    bool endsProgram = false;
};

struct Case {
    std::string words; ///< of the prompt
    std::string title;
    std::string text;
    std::vector<Button> buttons;
    std::string kind; ///< in the registry while it is open
    std::string reportedKind;
    bool isResizable;
    std::vector<Way> ways;
};

const std::string unlistService = "dialogResponse delete_dialog serviceDialog ";
const std::string unlistScript = "dialogResponse delete_dialog scriptLauncherDialog ";
const std::string unlistJoin = "dialogResponse delete_dialog samecon ";
const std::string unlistFeature = "dialogResponse delete_dialog camera ";

const std::vector<Case> cases = {
    {"samecon",
     "Brindle",
     "You are about to join a remote support session. The technician would be able to view and access your screen.",
     {{"Join", -3, "acceptbutton"}, {"Cancel", -2, "GtkButton"}},
     "samecon",
     "",
     false,
     {{-3, {unlistJoin, "dialogResponse screenSharingApproved"}, {"user accepted session"}},
      {-2, {unlistJoin, "dialogResponse screenSharingDenied"}, {"User has reJected session"}, true},
      {frameResponse, {unlistJoin, "dialogResponse screenSharingDenied"}, {"User has reJected session"}, true},
      {1, {unlistJoin, "dialogResponse screenSharingDenied"}, {"User has reJected session"}, true}}},
    {"userConcent TWF5IEk/ client9 camera",
     "Brindle",
     "May I?",
     {{"Yes", 1, "acceptbutton"}},
     "camera",
     "camera",
     true,
     {{1, {"dialogResponse concentuser approved client9 camera false", unlistFeature}, {}},
      {-3, {"dialogResponse concentuser disapproved client9 camera false", unlistFeature}, {"User Disapproved"}},
      {frameResponse,
       {"dialogResponse concentuser disapproved client9 camera false", unlistFeature},
       {"User Disapproved"}}}},
    {"runAsService",
     "Brindle",
     " Your technician has requested for a root-level \n access of your computer. Would you like to accept  \n the "
     "request?",
     {{"Yes", -3, "acceptbutton"}, {"No", -2, "GtkButton"}},
     "serviceDialog",
     "serviceDialog",
     false,
     {{-3, {"dialogResponse rasApproved", unlistService}, {"User Has approved to run as service"}},
      {-2, {unlistService}, {"User Has not approved to run as service"}},
      {frameResponse, {unlistService}, {"User Has not approved to run as service"}}}},
    {"launchScript deploy.sh",
     "Allow remote script execution?",
     "The technician is trying to execute the script \"deploy.sh\" on your computer.\nClicking on Allow will execute "
     "the script on your device.\n\nNote : Proceed with this action only if you trust the technician.",
     {{"Allow", -3, "acceptbutton"}, {"Deny", -2, "GtkButton"}},
     "scriptLauncherDialog",
     "scriptLauncherDialog",
     false,
     {{-3, {"dialogResponse scriptApproved", unlistScript}, {"User Has approved to execute script"}},
      {-2, {unlistScript}, {"User Has not approved to execute script"}},
      {frameResponse, {unlistScript}, {"User Has not approved to execute script"}}}},
    {"configureURS ref/7",
     "Brindle",
     " Would you like the Technician to configure this \n device for Unattended Access?",
     {{"Yes", -3, "acceptbutton"}, {"No", -2, "GtkButton"}},
     "",
     "",
     false,
     {{-3, {"dialogResponse ursConfigureApproved ref/7"}, {" User has approved installation"}},
      {-2, {"dialogResponse ursConfigureRejected ref/7"}, {" User has canceled intallation"}},
      {frameResponse, {"dialogResponse ursConfigureRejected ref/7"}, {" User has canceled intallation"}}}},
    {"lockuser",
     "Lock screen",
     "Lock screen under wayland will terminate the Session.\n Are you sure want to lock the screen?",
     {{"Yes", -3, "acceptbutton"}, {"No", -2, "GtkButton"}},
     "",
     "",
     false,
     {{-3, {"buttonClicked exit"}, {"LockScreen accepted"}}, {-2, {}, {"LOCKSCREEN CLOSED"}}, {frameResponse, {}, {}}}},
    {"command p7",
     "Brindle",
     "Ann Lee has requested to control your device.\n Would you like to accept the request?",
     {{"Yes", -3, "acceptbutton"}, {"No", -2, "GtkButton"}},
     "",
     "",
     true,
     {{-3, {"dialogResponse controlApproved p7"}, {"Demo Session has been approved"}},
      {-2, {"dialogResponse controlRefused"}, {" Demo Session has not been approved"}},
      {frameResponse, {"dialogResponse controlRefused"}, {" Demo Session has not been approved"}}}},
    {"rebootPc",
     "Reboot PC",
     "Technician wants to reboot your computer. Click\n\"Yes\" to reboot.",
     {{"Yes", -3, "acceptbutton"}, {"No", -2, "GtkButton"}},
     "",
     "",
     false,
     {{-3, {"dialogResponse rebootInitiated"}, {}},
      {-2, {"dialogResponse rebootCanceled"}, {}},
      {frameResponse, {"dialogResponse rebootCanceled"}, {}}}},
    {"acall",
     "Video/Voice call",
     "Would you like to accept your technician's voice/ \nvideo chat invite?                                ",
     {{"Accept", -3, "acceptbutton"}, {"Reject", -2, "GtkButton"}},
     "",
     "",
     false,
     {{-3, {"dialogResponse AVAccept"}, {"User accepted video call"}},
      {-2, {"dialogResponse AVReject"}, {"User rejected video call"}},
      {frameResponse, {"dialogResponse AVReject"}, {"User rejected video call"}}}},
    {"vcall",
     "Video/Voice call",
     "Would you like to accept your technician's voice/ \nvideo chat invite?                                ",
     {{"Accept", -3, "acceptbutton"}, {"Reject", -2, "GtkButton"}},
     "",
     "",
     false,
     {{-3, {"dialogResponse AVAccept"}, {"User accepted video call"}}}},
    {"initswap Bob",
     "",
     " Requesting Ann Lee to share screen          ",
     {{"Cancel", -2, "GtkButton"}},
     "initswap",
     "initswap",
     false,
     {{-2, {"dialogResponse swapRejected", "dialogResponse delete_dialog initswap "}, {}},
      {frameResponse, {"dialogResponse swapRejected", "dialogResponse delete_dialog initswap "}, {}}}},
};

std::string inUpperCase(const std::string &words)
{
    std::string result = words;
    std::transform(result.begin(), result.begin() + long(std::min(words.find(' '), words.size())), result.begin(),
                   [](char letter) { return g_ascii_toupper(letter); });
    return result;
}

class QuestionFamily : public DialogSession, public ::testing::WithParamInterface<Case>
{
protected:
    void SetUp() override
    {
        DialogSession::SetUp();
        replace_text(mainWindow->Techname, "Ann Lee");
        addParticipant("Ann Lee", "p7");
        forgetLines();
    }

    GtkWidget *openQuestion(const std::string &words)
    {
        prompt(words);
        GtkWidget *found = nullptr;
        EXPECT_TRUE(waitUntil([&] { return (found = findQuestion()) != nullptr; })) << words;
        drainMainLoop();
        return found;
    }

    /// The open dialog with the title of the case; the main window may have the same.
    GtkWidget *findQuestion()
    {
        for (GtkWidget *window : findWindows(GetParam().title))
            if (GTK_IS_DIALOG(window))
                return window;
        return nullptr;
    }
};

} // namespace

TEST_P(QuestionFamily, SaysWhatIsAsked)
{
    const Case &question = GetParam();
    GtkWidget *const dialog = openQuestion(question.words);
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(findLabel(dialog, question.text)) << describe(dialog);
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
    EXPECT_EQ(gtk_window_get_resizable(GTK_WINDOW(dialog)), question.isResizable);
    EXPECT_EQ(gtk_window_get_gravity(GTK_WINDOW(dialog)), GDK_GRAVITY_CENTER);
    for (const Button &button : question.buttons) {
        GtkWidget *const widget = gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), button.response);
        ASSERT_TRUE(widget) << button.label;
        EXPECT_EQ(shownText(widget), button.label);
        EXPECT_EQ(gtk_widget_get_name(widget), button.name);
        EXPECT_TRUE(gtk_widget_get_sensitive(widget));
    }
    EXPECT_THAT(openKinds(), question.kind.empty() ? std::vector<std::string>{} : std::vector{question.kind});
    if (question.reportedKind.empty())
        EXPECT_THAT(reportedKinds(), IsEmpty());
    else
        EXPECT_TRUE(waitUntil([&] { return !reportedKinds().empty(); }));
    EXPECT_THAT(reportedKinds(), Each(question.reportedKind));
}

TEST_P(QuestionFamily, SendsEachAnswerOnceAndIsGone)
{
    for (const Way &way : GetParam().ways) {
        SCOPED_TRACE(way.response);
        GtkWidget *const dialog = openQuestion(inUpperCase(GetParam().words));
        ASSERT_TRUE(dialog);
        const size_t logged = logMessages().size();
        forgetLines();
        way.response == frameResponse ? closeByFrame(dialog) : answer(dialog, way.response);
        EXPECT_THAT(answers(), ElementsAreArray(way.lines));
        const std::vector<std::string> log = logMessages();
        EXPECT_THAT(std::vector(log.begin() + long(logged), log.end()), ::testing::IsSupersetOf(way.logged));
        EXPECT_FALSE(findQuestion());
        EXPECT_THAT(openKinds(), IsEmpty());
        EXPECT_EQ(quit_requested(), way.endsProgram);
        EXPECT_FALSE(mainWindow->dialogChecker);
        if (way.endsProgram)
            break; // once asked to end, the program shows nothing more
    }
}

TEST_P(QuestionFamily, DestructionWithoutAnAnswerSendsNone)
{
    GtkWidget *const dialog = openQuestion(GetParam().words);
    ASSERT_TRUE(dialog);
    forgetLines();
    gtk_widget_destroy(dialog);
    EXPECT_THAT(answers(), IsEmpty());
}

std::string nameOfCase(const ::testing::TestParamInfo<Case> &info)
{
    return info.param.words.substr(0, info.param.words.find(' '));
}

INSTANTIATE_TEST_SUITE_P(Prompts, QuestionFamily, ::testing::ValuesIn(cases), nameOfCase);
