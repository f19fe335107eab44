// Files to a technician and from one: what is offered, what the agent is told.

#include "tests/ui/Dialog/dialogSession.h"

#include "Logger/logger.h"
#include "src/Dialog/dialog.h"
#include "src/Utils/dialogPlacement.h"
#include "src/main.h"
#include "src/support.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <memory>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{

const std::string unlisted = "dialogResponse delete_dialog fileChooserDialog ";
const std::string changed = "monitorData fileTransferSend";
constexpr int sendResponse = 12;
constexpr int saveResponse = 1;

class FileTransfer : public DialogSession
{
protected:
    void SetUp() override
    {
        DialogSession::SetUp();
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", TRUE); // nobody sits at the machine
    }
    void list(const std::vector<std::string> &paths, const char *receiver)
    {
        GSList *files = nullptr;
        for (const std::string &path : paths)
            files = g_slist_append(files, g_strdup(path.c_str()));
        DisplayList(files, mainWindow, receiver);
        g_slist_free_full(files, g_free);
    }
    GtkWidget *offer(const std::string &names)
    {
        prompt("fileTransferReceive" + names);
        EXPECT_TRUE(waitUntil([] { return FtReceiveDialog != nullptr; }));
        drainMainLoop();
        return FtReceiveDialog;
    }
    /// Does something once the chooser of a title is up, from inside its own loop.
    void whenChoosing(const char *title, std::function<void(GtkWidget *)> act)
    {
        m_title = title;
        m_act = std::move(act);
        g_timeout_add(20, lookForChooser, this);
    }
    /// Clicks and waits until the chooser has been answered.
    void changePath(GtkWidget *dialog)
    {
        gtk_button_clicked(GTK_BUTTON(findButton(dialog, "Change Path")));
        EXPECT_EQ(findWindow("Open File"), nullptr) << "a chooser inside the click locks assistive technology out";
        EXPECT_TRUE(waitUntil([this] { return answers().back() == changed; }));
    }
    std::string sparseFile(const char *name, off_t size)
    {
        const std::string path = home.write(name, "");
        EXPECT_EQ(truncate(path.c_str(), size), 0);
        return path;
    }

private:
    static gboolean lookForChooser(gpointer self)
    {
        auto *const test = static_cast<FileTransfer *>(self);
        GtkWidget *const chooser = findWindow(test->m_title);
        if (!chooser)
            return G_SOURCE_CONTINUE;
        const auto act = test->m_act;
        act(chooser);
        return G_SOURCE_REMOVE;
    }
    const char *m_title = nullptr;
    std::function<void(GtkWidget *)> m_act;
};

void chooseFolder(GtkWidget *chooser, const std::string &folder)
{
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(chooser), folder.c_str());
    EXPECT_TRUE(waitUntil([&] {
        g_autofree char *current = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(chooser));
        return g_strcmp0(current, folder.c_str()) == 0;
    }));
}

/// While it lives, access rights are asked for as a user who isn't root.
struct OrdinaryUser {
    OrdinaryUser() { EXPECT_TRUE(geteuid() != 0 || setresuid(65534, 0, 0) == 0); }
    ~OrdinaryUser() { EXPECT_TRUE(geteuid() != 0 || setresuid(0, 0, 0) == 0); }
};

std::string escaped(const std::string &path)
{
    g_autofree char *text = g_uri_escape_string(path.c_str(), nullptr, TRUE);
    return text;
}

} // namespace

TEST_F(FileTransfer, OneFileIsNamedWithItsReceiver)
{
    list({home.write("a b%ü日.txt", "x")}, "7");
    EXPECT_THAT(answers(), ElementsAre("dialogResponse FileName " + escaped(home.file("a b%ü日.txt")) + " 7"));
    EXPECT_THAT(answers().front(), ::testing::HasSubstr("%2Fa%20b%25ü日.txt"));
    EXPECT_FALSE(logHas("Errro getting file data"));
}

TEST_F(FileTransfer, SeveralFilesAreEscapedTwiceInOneField)
{
    list({"/x/a b", "/y"}, "-1");
    EXPECT_THAT(answers(), ElementsAre("zip_folder FileName%20%252Fx%252Fa%2520b%20%252Fy -1"));
    EXPECT_EQ(countLogMessages(logPath(), "Errro getting file data"), 2);
}

TEST_F(FileTransfer, FileAboveTheLimitEndsTheList)
{
    const std::string atLimit = sparseFile("limit", 2147483648);
    const std::string above = sparseFile("above", 2147483649);
    list({atLimit, above, "/never"}, "7");
    EXPECT_THAT(answers(),
                ElementsAre("zip_folder " + escaped("FileName " + escaped(atLimit) + " " + escaped(above)) + " 7"));
    list({above}, "7");
    EXPECT_THAT(answers().back(), "dialogResponse FileName " + escaped(above) + " 7");
}

TEST_F(FileTransfer, NothingChosenTellsNothing)
{
    list({}, "7");
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(FileTransfer, ChosenFileGoesToTheOneWhoAsked)
{
    const std::string path = home.write("a b.txt", "x");
    whenChoosing("Send File", [&](GtkWidget *chooser) {
        EXPECT_EQ(shownText(gtk_dialog_get_widget_for_response(GTK_DIALOG(chooser), sendResponse)), "Send ");
        EXPECT_EQ(shownText(gtk_dialog_get_widget_for_response(GTK_DIALOG(chooser), GTK_RESPONSE_CANCEL)), "Cancel");
        EXPECT_TRUE(gtk_file_chooser_get_select_multiple(GTK_FILE_CHOOSER(chooser)));
        EXPECT_THAT(openKinds(), ElementsAre("fileChooserDialog"));
        prompt("fileTransfer 9"); // does not change the receiver of these files
        EXPECT_TRUE(waitUntil([&] { return logHas("window already active"); }));
        gtk_file_chooser_select_filename(GTK_FILE_CHOOSER(chooser), path.c_str());
        EXPECT_TRUE(waitUntil([&] {
            GSList *files = gtk_file_chooser_get_filenames(GTK_FILE_CHOOSER(chooser));
            const bool isChosen = files && path == static_cast<const char *>(files->data);
            g_slist_free_full(files, g_free);
            return isChosen;
        }));
        gtk_dialog_response(GTK_DIALOG(chooser), sendResponse);
    });
    prompt("fileTransfer 7");
    drainMainLoop();
    EXPECT_TRUE(waitUntil([&] { return answers().size() == 2; }));
    EXPECT_THAT(answers(), ElementsAre("dialogResponse FileName " + escaped(path) + " 7", unlisted));
    EXPECT_TRUE(logHas("Prompt FT dialog 7"));
}

TEST_F(FileTransfer, CancelledChoiceTellsNothing)
{
    whenChoosing("Send File",
                 [](GtkWidget *chooser) { gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_CANCEL); });
    prompt("fileTransfer 7");
    EXPECT_TRUE(waitUntil([&] { return answers().size() == 1; }));
    EXPECT_THAT(answers(), ElementsAre(unlisted));
}

TEST_F(FileTransfer, QuestionsComeWhileTheChooserIsOpenAndTheEndClosesIt)
{
    bool hasAsked = false;
    whenChoosing("Send File", [&](GtkWidget *) {
        hasAsked = raise("launchScript x", "Allow remote script execution?") != nullptr;
        request_quit();
    });
    prompt("fileTransfer 7");
    EXPECT_TRUE(waitUntil([&] { return hasAsked && findWindows("Send File").empty(); }));
    EXPECT_THAT(answers(), ElementsAre(unlisted));
}

TEST_F(FileTransfer, OfferNamesTheFilesAndIsSavedWhereItSays)
{
    GtkWidget *const dialog = offer(" a%20b.txt c.txt");
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Receive File");
    EXPECT_TRUE(findLabel(dialog, "File Name:  a b.txt, c.txt.")) << describe(dialog);
    EXPECT_TRUE(findLabel(dialog, "/tmp/"));
    EXPECT_FALSE(mainWindow->tempFT);
    EXPECT_TRUE(findByName(dialog, "receiveBox"));
    EXPECT_EQ(gtk_window_get_gravity(GTK_WINDOW(dialog)), GDK_GRAVITY_SOUTH_EAST);
    EXPECT_STREQ(gtk_widget_get_name(findButton(dialog, "Save")), "acceptbutton");
    EXPECT_EQ(gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_NONE), findButton(dialog, "Cancel"));
    answer(dialog, saveResponse);
    EXPECT_THAT(answers(), ElementsAre("monitorData fileTransferRecive", "dialogResponse FTAccept %2Ftmp%2F"));
    for (const char *const line :
         {"Active user is NULL", "Download path is /tmp/", "File Transfer Accepted to path: /tmp/"})
        EXPECT_TRUE(logHas(line)) << line;
    EXPECT_FALSE(FtReceiveDialog);
}

TEST_F(FileTransfer, EveryOtherAnswerRefusesTheOffer)
{
    for (const int response : {int(GTK_RESPONSE_NONE), int(GTK_RESPONSE_DELETE_EVENT), int(GTK_RESPONSE_ACCEPT)}) {
        forgetLines();
        answer(offer(""), response);
        EXPECT_THAT(answers(), ElementsAre("monitorData fileTransferRecive", "dialogResponse FTCancel")) << response;
    }
}

TEST_F(FileTransfer, NewerOfferTakesThePlaceOfAnOpenOne)
{
    offer(" a.txt");
    prompt("fileTransferReceive b.txt");
    prompt("fileTransferReceive c.txt");
    drainMainLoop();
    EXPECT_EQ(findWindows("Receive File").size(), 1U);
    EXPECT_TRUE(findLabel(FtReceiveDialog, "File Name:  c.txt."));
    answer(FtReceiveDialog, saveResponse);
    const std::string shown = "monitorData fileTransferRecive";
    EXPECT_THAT(answers(), ElementsAre(shown, shown, shown, "dialogResponse FTAccept %2Ftmp%2F"));
}

TEST_F(FileTransfer, StandsInTheCornerOfTheScreen)
{
    GtkWidget *const dialog = offer(" a.txt");
    GdkRectangle place = {};
    EXPECT_TRUE(waitUntil([&] {
        gdk_window_get_frame_extents(gtk_widget_get_window(dialog), &place);
        return place.x + place.width == readScreenSize().width && place.y + place.height == readScreenSize().height;
    })) << place.x
        << "," << place.y << " " << place.width << "x" << place.height;
}

TEST_F(FileTransfer, AnotherFolderIsTakenOver)
{
    const std::string folder = home.makeFolder("saved here");
    GtkWidget *const dialog = offer(" a.txt");
    whenChoosing("Open File", [&](GtkWidget *chooser) {
        chooseFolder(chooser, folder);
        gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
    });
    changePath(dialog);
    EXPECT_TRUE(findLabel(dialog, folder)) << describe(dialog);
    answer(dialog, saveResponse);
    EXPECT_THAT(answers(), ElementsAre("monitorData fileTransferRecive", "monitorData fileTransferSend",
                                       "dialogResponse FTAccept " + escaped(folder)));
}

TEST_F(FileTransfer, NamesOfFilesForgeNoLineOfTheLog)
{
    setDebugMode(true);
    list({sparseFile("above\nline", 2147483649)}, "7");
    EXPECT_TRUE(logHas("File : " + home.file("above\uFFFDline") + " is greater than 2 gb"));
    const std::string folder = home.makeFolder("saved\nhere");
    GtkWidget *const dialog = offer(" a.txt");
    whenChoosing("Open File", [&](GtkWidget *chooser) {
        chooseFolder(chooser, folder);
        gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
    });
    changePath(dialog);
    answer(dialog, saveResponse);
    EXPECT_THAT(answers().back(), "dialogResponse FTAccept " + escaped(folder));
    EXPECT_TRUE(logHas("File Transfer Accepted to path: " + home.file("saved\uFFFDhere")));
}

TEST_F(FileTransfer, FolderWithoutRightsIsRefusedAndTheOldOneStays)
{
    const std::string folder = home.makeFolder("read only");
    ASSERT_EQ(chmod(folder.c_str(), 0500), 0);
    GtkWidget *const dialog = offer(" a.txt");
    std::unique_ptr<OrdinaryUser> user;
    whenChoosing("Open File", [&](GtkWidget *chooser) {
        chooseFolder(chooser, folder);
        user = std::make_unique<OrdinaryUser>();
        gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
    });
    changePath(dialog);
    user.reset();
    EXPECT_TRUE(isShown(findLabel(dialog, "You don't have enough privilege to access the file")));
    EXPECT_TRUE(logHas("You Dont Have access"));
    EXPECT_TRUE(findLabel(dialog, "/tmp/"));
    answer(dialog, saveResponse); // the notice's timer goes with the dialog
    EXPECT_THAT(answers().back(), "dialogResponse FTAccept %2Ftmp%2F");
}

TEST_F(FileTransfer, OfferReplacedWhileItsFolderIsChosenStaysUntouched)
{
    const std::string folder = home.makeFolder("saved here");
    GtkWidget *const dialog = offer(" a.txt");
    whenChoosing("Open File", [&](GtkWidget *chooser) {
        prompt("fileTransferReceive b.txt");
        EXPECT_TRUE(waitUntil([&] { return countLogMessages(logPath(), "Download path is /tmp/") == 2; }));
        chooseFolder(chooser, folder);
        gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
    });
    changePath(dialog);
    EXPECT_TRUE(findLabel(FtReceiveDialog, "/tmp/"));
    EXPECT_EQ(answers().back(), "monitorData fileTransferSend");
}

TEST_F(FileTransfer, LongOfferStaysOnTheScreen)
{
    std::string names;
    for (int i = 0; i < 20000; i++)
        names += " a-rather-long-file-name-" + std::to_string(i) + ".txt";
    GdkRectangle place = {};
    gdk_window_get_frame_extents(gtk_widget_get_window(offer(names)), &place);
    EXPECT_LT(place.height, 700);
    EXPECT_LT(place.width, 700);
}

TEST_F(FileTransfer, AnOfferThatIsNotShownWholeIsNotSaved)
{
    const auto names = [](int count) {
        std::string all;
        for (int i = 0; i < count; i++)
            all += " file" + std::to_string(i) + ".txt";
        return all;
    };
    EXPECT_TRUE(gtk_widget_get_sensitive(findButton(offer(names(4000)), "Save"))) << "its list scrolls";
    EXPECT_FALSE(gtk_widget_get_sensitive(findButton(offer(names(12000)), "Save")));
}

TEST_F(FileTransfer, WhoeverIsTypingDoesNotSave)
{
    GtkWidget *const dialog = offer(" a.txt");
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), findButton(dialog, "Cancel"));
}
