// The clickable word of an AR invitation.

#include "src/Utils/webview.h"
#include "tests/ui/Chat/chatPanelSession.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::ElementsAre;

constexpr char invitation[] =
    " Ann has initiated an AR \n assistance session. join now.\n To suspend screen sharing, click pause.\n";

// What the word's callback was given; "(null)" stands for a missing address.
std::vector<std::string> calls;

void noteCall(const char *url, ChatWindow *)
{
    calls.emplace_back(url ? url : "(null)");
}

class ChatLink : public ChatPanelSession
{
protected:
    void SetUp() override
    {
        ChatPanelSession::SetUp();
        openPanel();
        calls.clear();
        chatWindow->ArSessionUrl = g_strdup("http://ar/1");
    }

    void append(const std::string &text, const char *word = "join now.")
    {
        append_message_with_clickable_range_word(view(), text.c_str(), word, noteCall, chatWindow);
        drainMainLoop();
    }

    /// A press where a character of the conversation stands.
    GdkEventButton pressAt(int offset) const
    {
        GtkTextIter place;
        gtk_text_buffer_get_iter_at_offset(buffer(), &place, offset);
        gtk_text_view_scroll_to_iter(view(), &place, 0, false, 0, 0);
        drainMainLoop();
        GdkRectangle at = {};
        gtk_text_view_get_iter_location(view(), &place, &at);
        GdkEventButton event = {};
        event.type = GDK_BUTTON_PRESS;
        event.button = 1;
        int x = 0, y = 0;
        gtk_text_view_buffer_to_window_coords(view(), GTK_TEXT_WINDOW_TEXT, at.x, at.y + at.height / 2, &x, &y);
        event.x = x;
        event.y = y;
        return event;
    }

    void press(GdkEventButton event)
    {
        EXPECT_FALSE(on_text_view_button_press(chatWindow->chatview, &event, chatWindow));
    }

    ClickableRange range() const { return *chatWindow->clickableRange; }
};

} // namespace

TEST_F(ChatLink, InvitationIsBoxedAndItsWordUnderlined)
{
    HandleLensSession(g_strdup("AR_SESSION http://ar/2 Ann Smith"), chatWindow);
    awaitShown("pause.\n");
    EXPECT_THAT(runs(),
                ElementsAre(Piece{" Ann has initiated an AR \n assistance session. ", {"blue_box"}},
                            Piece{"join now.", {"blue_box", "clickable_word"}},
                            Piece{"\n To suspend screen sharing, click pause.", {"blue_box"}}, Piece{"\n", {}}));
    EXPECT_STREQ(chatWindow->ArSessionUrl, "http://ar/2");
    EXPECT_EQ(range().cb, LoadWebviewWrapper);
}

TEST_F(ChatLink, MissingOrEmptyNameIsTheTechnician)
{
    for (const char *const line : {"AR_SESSION http://ar/2", "AR_SESSION http://ar/2 ", "AR_SESSION"}) {
        gtk_text_buffer_set_text(buffer(), "", 0);
        HandleLensSession(g_strdup(line), chatWindow);
        awaitShown(" The Technician has initiated an AR \n");
    }
    EXPECT_STREQ(chatWindow->ArSessionUrl, "");
}

TEST_F(ChatLink, NameIsNeitherAFormatNorMarkupNorNecessarilyUtf8)
{
    HandleLensSession(g_strdup("AR_SESSION http://ar/%s%n %s<b>\xff"), chatWindow);
    awaitShown(" %s<b>\ufffd has initiated an AR \n assistance session. join now.\n");
}

TEST_F(ChatLink, BothEndsOfTheWordReactAndTheirNeighboursDoNot)
{
    append(invitation);
    const ClickableRange word = range();
    const std::string text = invitation;
    EXPECT_EQ(word.start, int(text.find("join now.")));
    EXPECT_EQ(word.end, word.start + 9);
    press(pressAt(word.start - 1));
    EXPECT_TRUE(calls.empty());
    press(pressAt(word.start));
    EXPECT_EQ(calls.size(), 1u);
    press(pressAt(word.end));
    EXPECT_EQ(calls.size(), 2u);
    press(pressAt(word.end + 2));
    EXPECT_THAT(calls, ElementsAre("http://ar/1", "http://ar/1"));
    EXPECT_EQ(countLogMessages(logPath(), "Clickable word clicked, invoking callback.loading.... http://ar/1"), 2);
}

TEST_F(ChatLink, OnlyTheLastInvitationReacts)
{
    append(invitation);
    const ClickableRange first = range();
    append(invitation);
    press(pressAt(first.start + 2));
    EXPECT_TRUE(calls.empty());
    press(pressAt(range().start + 2));
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(ChatLink, RightButtonAndDoubleClickEventsAreIgnored)
{
    append(invitation);
    GdkEventButton event = pressAt(range().start + 2);
    event.button = 3;
    press(event);
    event.button = 1;
    event.type = GDK_2BUTTON_PRESS;
    press(event);
    event.type = GDK_3BUTTON_PRESS;
    press(event);
    EXPECT_TRUE(calls.empty());
    event.type = GDK_BUTTON_PRESS;
    press(event);
    press(event);
    EXPECT_EQ(calls.size(), 2u);
}

TEST_F(ChatLink, MultiByteNameMovesTheRangeByItsSurplusBytes)
{
    append(" \u00e9\u4e2d has initiated. join now.\n more text behind it");
    const int start = int(std::u32string(U" \u00e9\u4e2d has initiated. ").size());
    EXPECT_EQ(range().start, start + 3);
    EXPECT_EQ(range().end, start + 12);
    EXPECT_EQ(runs().at(1).text, "n now.\n m");
}

TEST_F(ChatLink, RangeBehindTheEndIsClippedInTheViewOnly)
{
    append(std::string(30, '.') + "\u4e2d\u4e2d\u4e2d\u4e2d\u4e2d\u4e2d\u4e2djoin now.");
    EXPECT_EQ(range().start, 30 + 21);
    EXPECT_EQ(range().end, 30 + 21 + 9);
    EXPECT_EQ(runs().back().text, "\n");
}

TEST_F(ChatLink, NoticeWithoutTheWordLeavesTheLastLinkAlive)
{
    append(invitation);
    const ClickableRange before = range();
    append("something else");
    append("something else", nullptr);
    append_message_with_clickable_range_word(view(), nullptr, "join now.", noteCall, chatWindow);
    append_message_with_clickable_range_word(nullptr, "text", "text", noteCall, chatWindow);
    EXPECT_EQ(range().start, before.start);
    EXPECT_EQ(shown(), std::string(invitation) + "\nsomething else\nsomething else\n");
}

TEST_F(ChatLink, MissingAddressIsHarmless)
{
    g_clear_pointer(&chatWindow->ArSessionUrl, g_free);
    HandleLensSession(g_strdup("AR_SESSION"), chatWindow);
    awaitShown("pause.\n");
    g_clear_pointer(&chatWindow->ArSessionUrl, g_free);
    press(pressAt(range().start));
    EXPECT_TRUE(logHas("Clickable word clicked, invoking callback.loading.... (null)"));
    LoadWebviewWrapper(nullptr, chatWindow);
    LoadWebviewWrapper("http://ar/1", nullptr);
    EXPECT_FALSE(chatWindow->isARSessionInitiated);
}

TEST_F(ChatLink, ManyInvitationsLeaveNoMarksBehind)
{
    const auto countMarks = [this] {
        GtkTextIter end;
        gtk_text_buffer_get_end_iter(buffer(), &end);
        GSList *const marks = gtk_text_iter_get_marks(&end);
        const guint count = g_slist_length(marks);
        g_slist_free(marks);
        return count;
    };
    append(invitation);
    const guint after = countMarks();
    for (int i = 0; i < 10; i++)
        append(invitation);
    EXPECT_EQ(countMarks(), after);
}

TEST_F(ChatLink, InvitationAfterTheWindowIsGoneIsHarmless)
{
    gtk_widget_destroy(mainWindow->window);
    HandleLensSession(g_strdup("AR_SESSION http://ar/9 Ann"), chatWindow);
    drainMainLoop();
    EXPECT_STREQ(chatWindow->ArSessionUrl, "http://ar/9");
}
