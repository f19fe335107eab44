// What the customer types: when it is sent, what the agent gets, and the transcript's save button.

#include "tests/ui/Chat/chatPanelSession.h"

#include <gmock/gmock.h>

#include <regex>

#include <unistd.h>

namespace
{

using ::testing::ElementsAre;

class ChatSending : public ChatPanelSession
{
};

class UrsChatSending : public ChatPanelSession
{
protected:
    UrsChatSending() : ChatPanelSession("ras") {}
};

} // namespace

TEST_F(ChatSending, WordAndReturnTravelEscapedWithoutLineEnd)
{
    type("hello\n");
    ASSERT_TRUE(waitUntil([&] { return agent->seen() != ""; }));
    EXPECT_THAT(agent->texts(), ElementsAre("chat hello%0A"));
    EXPECT_EQ(typed(), "");
}

TEST_F(ChatSending, ReservedCharactersAreEscapedAndUtf8IsNot)
{
    type("a/b?c=d&100% \u00e9\U0001F600\n", GDK_KEY_KP_Enter);
    ASSERT_TRUE(waitUntil([&] { return agent->seen() != ""; }));
    EXPECT_THAT(agent->texts(), ElementsAre("chat a%2Fb%3Fc%3Dd%26100%25%20\u00e9\U0001F600%0A"));
}

TEST_F(ChatSending, BlankInputStaysInTheBox)
{
    for (const char *const blank : {"", "\n", " ", "\n\n", "\n\n\n", "\n\n\n\n"}) {
        type(blank);
        EXPECT_EQ(typed(), blank);
    }
    EXPECT_EQ(shown(), "");
    type("  ");
    type("\n\n\n\n\n");
    const std::string both = "chat %20%20chat %0A%0A%0A%0A%0A";
    EXPECT_TRUE(waitUntil([&] { return agent->seen() == both; }, [&] { return agent->seen(); }));
}

TEST_F(ChatSending, OtherKeysAndPressesSendNothing)
{
    type("hello", GDK_KEY_a);
    EXPECT_EQ(typed(), "hello");
    GdkEventKey press = {};
    press.type = GDK_KEY_PRESS;
    press.keyval = GDK_KEY_Return;
    EXPECT_FALSE(on_key_press(GTK_WIDGET(input()), &press, chatWindow));
    EXPECT_EQ(typed(), "hello");
    EXPECT_EQ(shown(), "");
}

TEST_F(ChatSending, OneMegabyteIsSentWhole)
{
    const std::string text(1000000, 'x');
    type(text + "\n");
    ASSERT_TRUE(waitUntil([&] { return agent->seen().size() >= text.size() + 8; }));
    EXPECT_EQ(agent->seen(), "chat " + text + "%0A");
}

TEST_F(ChatSending, FirstMessageEnablesTheSaveButton)
{
    GtkWidget *const button = chatWindow->chatExpander->rightButton;
    EXPECT_FALSE(gtk_widget_get_sensitive(button));
    type("hello\n");
    EXPECT_TRUE(gtk_widget_get_sensitive(button));
}

TEST_F(ChatSending, FirstReceivedMessageEnablesTheSaveButton)
{
    receive("Ann\nhello");
    EXPECT_TRUE(waitUntil([&] { return gtk_widget_get_sensitive(chatWindow->chatExpander->rightButton) != 0; }));
}

TEST_F(ChatSending, SentMessagesAreNotedAsYou)
{
    type("one\n");
    EXPECT_EQ(chatWindow->AgentMessage, 1);
    EXPECT_TRUE(std::regex_match(chatWindow->chatData->str, std::regex("\nyou \\([0-9:]+\\) \n \t\t\t one\n")));
    EXPECT_STREQ(chatWindow->charSender, "you\n");
}

TEST_F(ChatSending, EveryBlockHasItsOwnAuthorHoweverManyMessagesWait)
{
    receive("Ann\nfirst");
    awaitShown("first\n");
    receive("Ann\nwaits");
    awaitDelivered();
    type("own\n");
    awaitShown("waits\n");
    type("last\n");
    EXPECT_EQ(shown(), "\nAnn\nfirst\nyou\nown\n\nAnn\nwaits\nyou\nlast\n");
}

TEST_F(ChatSending, AMessageWithoutTextCountsAsItsAuthors)
{
    receive("Ann");
    receive("Ann\nhello");
    awaitShown("hello\n");
    EXPECT_EQ(shown(), "hello\n") << "Ann had a message before";
    type("mine\n");
    receive("Ann\n%zz");
    awaitDelivered();
    drainMainLoop();
    type("more\n");
    receive("Bob");
    receive("Bob\nbye");
    awaitShown("bye\n");
    EXPECT_EQ(shown(), "hello\nyou\nmine\nyou\nmore\nbye\n");
}

namespace
{

/// Answers the folder question as soon as it is open.
struct FolderAnswer {
    std::string folder;
    int response;
    bool folderVanishes = false; ///< between the pick and the answer
    int seen = 0;
    int settled = 0; ///< looks in a row at which the folder was the picked one
};

constexpr int settledLooks = 5; // the chooser goes on loading after its pick was set

gboolean answerFolderQuestion(gpointer data)
{
    auto *const answer = static_cast<FolderAnswer *>(data);
    GtkWidget *const dialog = findWindow("Save Chat Transcript");
    if (!dialog || !gtk_widget_get_mapped(dialog))
        return G_SOURCE_CONTINUE;
    answer->seen++;
    g_autofree char *current = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog));
    if (!answer->folder.empty() && g_strcmp0(current, answer->folder.c_str()) != 0) {
        if (answer->settled == 0)
            gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(dialog), answer->folder.c_str());
        answer->settled = 0;
        return G_SOURCE_CONTINUE;
    }
    if (++answer->settled < settledLooks)
        return G_SOURCE_CONTINUE;
    if (answer->folderVanishes)
        rmdir(answer->folder.c_str());
    gtk_dialog_response(GTK_DIALOG(dialog), answer->response);
    return G_SOURCE_REMOVE;
}

/// Clicks the save button and answers the question.
void save(ChatWindow *chatwindow, FolderAnswer answer)
{
    const guint source = g_timeout_add(20, answerFolderQuestion, &answer);
    SaveChatTranscript(chatwindow->chatExpander->rightButton, chatwindow);
    if (answer.seen == 0)
        g_source_remove(source);
    EXPECT_GT(answer.seen, 0);
    EXPECT_EQ(findWindow("Save Chat Transcript"), nullptr);
}

std::string pad(int count)
{
    return std::string(size_t(count), ' ');
}

} // namespace

TEST_F(ChatSending, TranscriptIsHeaderAndConversation)
{
    home.makeFolder("saved");
    replace_text(chatWindow->sessionKey, "12345");
    receive("Ann\nhello");
    awaitShown("hello");
    save(chatWindow, {home.file("saved"), GTK_RESPONSE_ACCEPT});
    struct tm today;
    time_data(&today);
    EXPECT_EQ(home.read("saved/Brindle_Chat_Log_.txt"),
              std::string(transcriptHeader(today, "", "normal").get()) + chatWindow->chatData->str);
    EXPECT_STREQ(chatWindow->sessionKey, "");
}

TEST_F(UrsChatSending, KeyOfThisSessionTypeIsNotWrittenEither)
{
    home.makeFolder("saved");
    replace_text(chatWindow->sessionKey, "12345");
    save(chatWindow, {home.file("saved"), GTK_RESPONSE_ACCEPT});
    const std::string saved = home.read("saved/Brindle_Chat_Log_.txt");
    EXPECT_NE(saved.find("\tsessionkey: " + pad(54) + "\n"), std::string::npos) << saved;
    EXPECT_NE(saved.find("\tType: ras" + pad(60) + "\n"), std::string::npos) << saved;
}

TEST_F(ChatSending, SecondSaveReplacesTheFirst)
{
    const std::string file = home.write("saved/Brindle_Chat_Log_.txt", std::string(100000, 'x'));
    save(chatWindow, {home.file("saved"), GTK_RESPONSE_ACCEPT});
    EXPECT_EQ(readWholeFile(file).find('x'), std::string::npos);
}

TEST_F(ChatSending, CancelledQuestionSavesNothing)
{
    save(chatWindow, {"", GTK_RESPONSE_CANCEL});
    EXPECT_FALSE(home.has("Brindle_Chat_Log_.txt"));
    EXPECT_FALSE(chatWindow->isSavingTranscript);
}

TEST_F(ChatSending, FolderThatVanishesIsReported)
{
    home.makeFolder("gone");
    save(chatWindow, {home.file("gone"), GTK_RESPONSE_ACCEPT, true});
    EXPECT_TRUE(logHas("You Dont Have access"));
    EXPECT_TRUE(waitUntil([&] { return isShown(mainWindow->infoBarStruct->infoBarLabel); }));
    EXPECT_EQ(shownText(mainWindow->infoBarStruct->infoBarLabel), "You don't have enough privilege to access the file");
}

TEST_F(ChatSending, FileThatCannotBeOpenedIsPassedOverInSilence)
{
    home.makeFolder("saved/Brindle_Chat_Log_.txt");
    const size_t before = logMessages().size();
    save(chatWindow, {home.file("saved"), GTK_RESPONSE_ACCEPT});
    EXPECT_EQ(logMessages().size(), before);
    EXPECT_FALSE(isShown(mainWindow->infoBarStruct->infoBar));
}

TEST_F(ChatSending, FullDiskIsLogged)
{
    home.makeFolder("saved");
    ASSERT_EQ(symlink("/dev/full", home.file("saved/Brindle_Chat_Log_.txt").c_str()), 0);
    save(chatWindow, {home.file("saved"), GTK_RESPONSE_ACCEPT});
    EXPECT_TRUE(logHas("error writing chat transcript No space left on device"));
}

TEST_F(ChatSending, QuitEndsTheFolderQuestion)
{
    g_timeout_add(
        100,
        [](gpointer) -> gboolean {
            request_quit();
            return G_SOURCE_REMOVE;
        },
        nullptr);
    SaveChatTranscript(chatWindow->chatExpander->rightButton, chatWindow);
    EXPECT_EQ(findWindow("Save Chat Transcript"), nullptr);
}

TEST_F(ChatSending, LongSentTextIsScrolledToItsEnd)
{
    openPanel();
    std::string text;
    for (int i = 0; i < 100; i++)
        text += "line " + std::to_string(i) + "\n";
    type(text);
    GtkAdjustment *const down = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(view()));
    EXPECT_TRUE(waitUntil([&] {
        return gtk_adjustment_get_value(down) > 0 &&
               gtk_adjustment_get_value(down) + gtk_adjustment_get_page_size(down) >=
                   gtk_adjustment_get_upper(down) - 30;
    }));
}
