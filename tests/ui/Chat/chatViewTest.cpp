// The chat panel: its widgets, its tags, and how messages of both sides are laid out.

#include "tests/ui/Chat/chatPanelSession.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::ElementsAre;

class ChatView : public ChatPanelSession
{
};

const std::vector<std::string> ownNameTags = {"big", "gray_bg", "rightustification", "rmarg_user", "usercolor"};
const std::vector<std::string> ownTextTags = {"gray_bg", "msg_size", "rightustification", "rmarg", "sendercolor"};
const std::vector<std::string> nameTags = {"big", "gray_bg", "leftjustification", "lmarg_user", "usercolor"};
const std::vector<std::string> textTags = {"gray_bg", "leftjustification", "lmarg", "msg_size", "recivercolor"};

/// A number of a tag; -1 when the tag doesn't set it.
int tagNumber(GtkTextTag *tag, const std::string &property)
{
    gboolean isSet = false;
    int number = -1;
    g_object_get(tag, (property + "-set").c_str(), &isSet, property.c_str(), &number, nullptr);
    return isSet ? number : -1;
}

std::string tagColour(GtkTextTag *tag, const std::string &property)
{
    gboolean isSet = false;
    g_object_get(tag, (property + "-set").c_str(), &isSet, nullptr);
    if (!isSet)
        return "";
    GdkRGBA *colour = nullptr;
    g_object_get(tag, (property + "-rgba").c_str(), &colour, nullptr);
    g_autofree char *text = g_strdup_printf("#%02X%02X%02X", int(colour->red * 255 + .5), int(colour->green * 255 + .5),
                                            int(colour->blue * 255 + .5));
    gdk_rgba_free(colour);
    return text;
}

struct TagCase {
    const char *tag;
    int leftMargin, rightMargin, above, below, indent, size, weight, justification, underline;
    const char *foreground, *paragraphBackground;
};

constexpr TagCase tagCases[] = {
    {"lmarg", 10, 60, -1, -1, -1, -1, -1, -1, -1, "", ""},
    {"rmarg", 60, 10, -1, -1, -1, -1, -1, -1, -1, "", ""},
    {"lmarg_user", 15, 5, -1, -1, -1, -1, -1, -1, -1, "", ""},
    {"rmarg_user", 5, 15, -1, -1, -1, -1, -1, -1, -1, "", ""},
    {"sendercolor", -1, -1, -1, -1, -1, -1, -1, -1, -1, "#505168", ""},
    {"recivercolor", -1, -1, -1, -1, -1, -1, -1, -1, -1, "#27233A", ""},
    {"usercolor", -1, -1, -1, -1, -1, -1, -1, -1, -1, "#9E9E9E", ""},
    {"gray_bg", -1, -1, 6, -1, -1, -1, -1, -1, -1, "", ""},
    {"rightustification", -1, -1, -1, -1, -1, -1, -1, GTK_JUSTIFY_RIGHT, -1, "", ""},
    {"leftjustification", -1, -1, -1, -1, -1, -1, -1, GTK_JUSTIFY_LEFT, -1, "", ""},
    {"big", -1, -1, -1, -1, -1, 7168, -1, -1, -1, "", ""},
    {"msg_size", -1, -1, -1, -1, -1, 11264, -1, -1, -1, "", ""},
    {"center_align", 8, 8, 2, 2, -1, -1, 700, GTK_JUSTIFY_CENTER, -1, "", ""},
    {"blue_box", 20, 20, 2, 2, 10, 9216, -1, -1, -1, "#000000", "#E3F2FD"},
    {"clickable_word", -1, -1, -1, -1, -1, -1, -1, -1, PANGO_UNDERLINE_SINGLE, "#007CE6", ""},
};

} // namespace

TEST_F(ChatView, TagsHaveTheirPropertiesAndNoOthers)
{
    GtkTextTagTable *const table = gtk_text_buffer_get_tag_table(buffer());
    EXPECT_EQ(size_t(gtk_text_tag_table_get_size(table)), std::size(tagCases));
    for (const TagCase &row : tagCases) {
        GtkTextTag *const tag = gtk_text_tag_table_lookup(table, row.tag);
        ASSERT_NE(tag, nullptr) << row.tag;
        const int numbers[] = {tagNumber(tag, "left-margin"),
                               tagNumber(tag, "right-margin"),
                               tagNumber(tag, "pixels-above-lines"),
                               tagNumber(tag, "pixels-below-lines"),
                               tagNumber(tag, "indent"),
                               tagNumber(tag, "size"),
                               tagNumber(tag, "weight"),
                               tagNumber(tag, "justification"),
                               tagNumber(tag, "underline")};
        EXPECT_THAT(numbers, ElementsAre(row.leftMargin, row.rightMargin, row.above, row.below, row.indent, row.size,
                                         row.weight, row.justification, row.underline))
            << row.tag;
        EXPECT_EQ(tagColour(tag, "foreground"), row.foreground) << row.tag;
        EXPECT_EQ(tagColour(tag, "paragraph-background"), row.paragraphBackground) << row.tag;
        EXPECT_EQ(tagColour(tag, "background"), "") << row.tag;
    }
}

TEST_F(ChatView, ConversationIsReadOnlyAndWraps)
{
    EXPECT_STREQ(gtk_widget_get_name(chatWindow->chatview), "ChatRecive");
    EXPECT_FALSE(gtk_text_view_get_editable(view()));
    EXPECT_FALSE(gtk_text_view_get_cursor_visible(view()));
    EXPECT_EQ(gtk_text_view_get_wrap_mode(view()), GTK_WRAP_WORD_CHAR);
    GtkWidget *const scrolled = gtk_widget_get_parent(chatWindow->chatview);
    int width = 0, height = 0;
    gtk_widget_get_size_request(scrolled, &width, &height);
    EXPECT_EQ(width, -1);
    EXPECT_EQ(height, 175);
    GtkPolicyType across, down;
    gtk_scrolled_window_get_policy(GTK_SCROLLED_WINDOW(scrolled), &across, &down);
    EXPECT_EQ(across, GTK_POLICY_NEVER);
    EXPECT_EQ(down, GTK_POLICY_AUTOMATIC);
}

TEST_F(ChatView, InputIsIndentedWithBlackCaret)
{
    GtkWidget *const box = GTK_WIDGET(input());
    EXPECT_TRUE(gtk_text_view_get_editable(input()));
    EXPECT_EQ(gtk_text_view_get_indent(input()), 10);
    EXPECT_EQ(gtk_text_view_get_wrap_mode(input()), GTK_WRAP_WORD_CHAR);
    EXPECT_EQ(gtk_widget_get_margin_start(box), 6);
    EXPECT_EQ(gtk_widget_get_margin_top(box), 6);
    GtkWidget *const scrolled = gtk_widget_get_parent(box);
    int height = 0;
    gtk_widget_get_size_request(scrolled, nullptr, &height);
    EXPECT_EQ(height, 75);
    EXPECT_EQ(gtk_widget_get_margin_end(scrolled), 10);
    GtkStyleContext *const style = gtk_widget_get_style_context(box);
    for (const char *const property : {"caret-color", "-gtk-secondary-caret-color"}) {
        GdkRGBA *colour = nullptr;
        gtk_style_context_get(style, GTK_STATE_FLAG_NORMAL, property, &colour, nullptr);
        g_autofree char *text = gdk_rgba_to_string(colour);
        EXPECT_STREQ(text, "rgb(0,0,0)") << property;
        gdk_rgba_free(colour);
    }
}

TEST_F(ChatView, RecordStartsAsANewConversation)
{
    EXPECT_STREQ(chatWindow->charSender, "1");
    EXPECT_FALSE(chatWindow->isChatTranscriptEnabled);
    EXPECT_FALSE(chatWindow->isARSessionInitiated);
    EXPECT_EQ(chatWindow->clickableRange->cb, nullptr);
    EXPECT_EQ(shown(), "");
}

TEST_F(ChatView, ReceivedMessageStandsUnderItsSendersName)
{
    receive("Ann\nhello%0Aworld");
    awaitShown("world\n");
    EXPECT_THAT(runs(), ElementsAre(Piece{"\n", {}}, Piece{"Ann", nameTags}, Piece{"\n", {}},
                                    Piece{"hello\nworld", textTags}, Piece{"\n", {}}));
}

TEST_F(ChatView, TechnicianCalledOneHasNoNameLineAtFirst)
{
    receive("1\nhello");
    awaitShown("hello\n");
    EXPECT_EQ(shown(), "hello\n");
}

TEST_F(ChatView, SecondMessageOfASenderHasNoName)
{
    receive("Ann\none");
    receive("Ann\ntwo");
    awaitShown("two\n");
    EXPECT_EQ(shown(), "\nAnn\none\ntwo\n");
}

TEST_F(ChatView, SentMessagesShareOneHeaderAndTheNextReceivedOneIsNamedAgain)
{
    receive("Ann\none");
    awaitShown("one\n");
    type("a\n");
    type("b\n");
    receive("Ann\ntwo");
    awaitShown("two\n");
    EXPECT_THAT(runs(),
                ElementsAre(Piece{"\n", {}}, Piece{"Ann", nameTags}, Piece{"\n", {}}, Piece{"one", textTags},
                            Piece{"\n", {}}, Piece{"you\n", ownNameTags}, Piece{"a\nb\n", ownTextTags}, Piece{"\n", {}},
                            Piece{"Ann", nameTags}, Piece{"\n", {}}, Piece{"two", textTags}, Piece{"\n", {}}));
}

TEST_F(ChatView, TextsOfAnyKindAreShownAsTheyAre)
{
    receive("100%n <b>\n%25s%20%F0%9F%98%80%20%D7%A9%D7%9C%D7%95%D7%9D%20%3Ci%3E%26");
    awaitShown("&");
    EXPECT_EQ(shown(), "\n100%n <b>\n%s \U0001F600 \u05e9\u05dc\u05d5\u05dd <i>&\n");
}

TEST_F(ChatView, BytesThatAreNoUtf8AreRepairedForTheView)
{
    receive("A\xff\nx%FEy");
    awaitShown("y\n");
    EXPECT_EQ(shown(), "\nA\ufffd\nx\ufffdy\n");
}

TEST_F(ChatView, MessageOfOneMegabyteIsShownWhole)
{
    std::string text;
    while (text.size() < 1000000)
        text += "0123456789 abcdefghijklmnopqrstuvwxyz\n";
    g_autofree char *escaped = g_uri_escape_string(text.c_str(), nullptr, true);
    receive(std::string("Ann\n") + escaped);
    awaitShown(text);
}

TEST_F(ChatView, BurstOfTwoThousandIsShownInOrderAndOnce)
{
    std::string expected = "\nAnn\n";
    for (int i = 0; i < 2000; i++) {
        receive("Ann\nmessage" + std::to_string(i));
        expected += "message" + std::to_string(i) + "\n";
    }
    ASSERT_TRUE(waitUntil([&] { return shown() == expected; }, [&] { return std::to_string(shown().size()); }));
    EXPECT_EQ(chatWindow->message, nullptr);
    EXPECT_FALSE(chatWindow->isUpdateScheduled);
}

TEST_F(ChatView, BurstLetsOtherCallbacksTakeTheirTurn)
{
    for (int i = 0; i < 10000; i++)
        deliverToView(chatWindow, ReceivedMessage{OwnedText(g_strdup("Ann")), OwnedText(g_strdup("text")), i == 0});
    gint64 doneUs = 0;
    const gint64 startUs = g_get_monotonic_time();
    g_idle_add_full(
        G_PRIORITY_DEFAULT_IDLE,
        [](gpointer done) -> gboolean {
            *static_cast<gint64 *>(done) = g_get_monotonic_time();
            return G_SOURCE_REMOVE;
        },
        &doneUs, nullptr);
    ASSERT_TRUE(waitUntil([&] { return doneUs != 0; }));
    EXPECT_LT(doneUs - startUs, 1000000);
    EXPECT_FALSE(g_queue_is_empty(&chatWindow->received));
    EXPECT_TRUE(waitUntil([&] { return g_queue_is_empty(&chatWindow->received) != 0; }));
}

TEST_F(ChatView, MessageOpensTheClosedPanel)
{
    EXPECT_FALSE(isShown(chatWindow->chat_area));
    receive("Ann\nhello");
    awaitShown("hello");
    EXPECT_TRUE(isShown(chatWindow->chatview));
    EXPECT_TRUE(chatWindow->chatExpander->isVisible);
    EXPECT_EQ(chatWindow->chat->buttonState, 1);
    const char *icon = nullptr;
    gtk_image_get_icon_name(GTK_IMAGE(chatWindow->chatExpander->arrowImage), &icon, nullptr);
    EXPECT_STREQ(icon, "pan-down-symbolic");
}

TEST_F(ChatView, MessageWithoutTextOpensThePanelAndShowsNothing)
{
    receive("Ann");
    ASSERT_TRUE(waitUntil([&] { return isShown(chatWindow->chatview); }));
    EXPECT_EQ(shown(), "");
}

TEST_F(ChatView, WhatTheRecordItselfHoldsIsRenderedOnce)
{
    chatWindow->message = g_strdup("left in the record");
    chatWindow->isdifferentsender = true;
    replace_text(chatWindow->charSender, "Bob");
    EXPECT_FALSE(UpdateChat(chatWindow));
    EXPECT_FALSE(UpdateChat(chatWindow));
    EXPECT_EQ(shown(), "\nBob\nleft in the record\n");
    EXPECT_EQ(chatWindow->message, nullptr);
}

TEST_F(ChatView, LastMessageIsScrolledIntoSight)
{
    openPanel();
    for (int i = 0; i < 200; i++)
        receive("Ann\nmessage" + std::to_string(i));
    awaitShown("message199\n");
    GtkAdjustment *const down = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(view()));
    EXPECT_TRUE(waitUntil(
        [&] {
            return gtk_adjustment_get_value(down) > 0 &&
                   gtk_adjustment_get_value(down) + gtk_adjustment_get_page_size(down) >=
                       gtk_adjustment_get_upper(down) - 30;
        },
        [&] {
            return std::to_string(gtk_adjustment_get_value(down)) + " + " +
                   std::to_string(gtk_adjustment_get_page_size(down)) + " of " +
                   std::to_string(gtk_adjustment_get_upper(down));
        }));
    EXPECT_NE(gtk_text_buffer_get_mark(buffer(), "last_pos"), nullptr);
}

TEST_F(ChatView, MessagesAfterTheWindowIsGoneAreHarmless)
{
    gtk_widget_destroy(mainWindow->window);
    EXPECT_EQ(chatWindow->chatview, nullptr);
    ASSERT_FALSE(chatWindow->isdifferentsender);
    receive("Ann\nlate");
    ASSERT_TRUE(waitUntil([&] {
        const MutexLock lock(&chatWindow->mutex); // what was delivered, from somebody new, waits no more
        return chatWindow->isdifferentsender && g_queue_is_empty(&chatWindow->received);
    }));
    EXPECT_EQ(chatWindow->message, nullptr);
}
