// The chat panel: the conversation above, the input box below, and the tags that give every run of text its look.
// Texts only ever arrive at the end of the conversation, which grows for the whole session.

#include "src/Chat/chatView.h"

#include "Logger/logger.h"
#include "src/Chat/chatFlow.h"
#include "src/localizationText.h"
#include "src/support.h"

namespace
{

constexpr int conversationHeightPx = 175;
constexpr int inputHeightPx = 75;
constexpr int inputIndentPx = 10;
constexpr int inputMarginPx = 6;
constexpr int inputAreaMarginPx = 10;

/// One property of one tag: a text, or a number when there is no text.
struct TagProperty {
    const char *tag;
    const char *property;
    const char *text;
    int number;
};

// Later tags win over earlier ones. "gray_bg" has no background and "big" is small: the names are older than the looks.
constexpr TagProperty tagProperties[] = {
    {"lmarg", "left-margin", nullptr, 10},
    {"lmarg", "right-margin", nullptr, 60},
    {"rmarg", "left-margin", nullptr, 60},
    {"rmarg", "right-margin", nullptr, 10},
    {"lmarg_user", "left-margin", nullptr, 15},
    {"lmarg_user", "right-margin", nullptr, 5},
    {"rmarg_user", "left-margin", nullptr, 5},
    {"rmarg_user", "right-margin", nullptr, 15},
    {"sendercolor", "foreground", "#505168", 0},
    {"recivercolor", "foreground", "#27233A", 0},
    {"usercolor", "foreground", "#9E9E9E", 0},
    {"gray_bg", "pixels-above-lines", nullptr, 6},
    {"rightustification", "justification", nullptr, GTK_JUSTIFY_RIGHT},
    {"leftjustification", "justification", nullptr, GTK_JUSTIFY_LEFT},
    {"big", "size", nullptr, 7 * PANGO_SCALE},
    {"msg_size", "size", nullptr, 11 * PANGO_SCALE},
    {"center_align", "justification", nullptr, GTK_JUSTIFY_CENTER},
    {"center_align", "pixels-above-lines", nullptr, 2},
    {"center_align", "pixels-below-lines", nullptr, 2},
    {"center_align", "left-margin", nullptr, 8},
    {"center_align", "right-margin", nullptr, 8},
    {"center_align", "weight", nullptr, PANGO_WEIGHT_BOLD},
    {"blue_box", "paragraph-background", "#E3F2FD", 0},
    {"blue_box", "foreground", "#000000", 0},
    {"blue_box", "left-margin", nullptr, 20},
    {"blue_box", "right-margin", nullptr, 20},
    {"blue_box", "pixels-above-lines", nullptr, 2},
    {"blue_box", "pixels-below-lines", nullptr, 2},
    {"blue_box", "indent", nullptr, 10},
    {"blue_box", "size", nullptr, 9 * PANGO_SCALE},
    {"clickable_word", "foreground", "#007CE6", 0},
    {"clickable_word", "underline", nullptr, PANGO_UNDERLINE_SINGLE},
};

GtkTextTag *findOrCreateTag(GtkTextBuffer *buffer, const char *name)
{
    GtkTextTag *const tag = gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), name);
    return tag ? tag : gtk_text_buffer_create_tag(buffer, name, nullptr);
}

GtkWidget *newScrolledWindow(GtkWidget *content, int minimumHeightPx)
{
    GtkWidget *const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_widget_set_size_request(scrolled, -1, minimumHeightPx);
    gtk_container_add(GTK_CONTAINER(scrolled), content);
    return scrolled;
}

// The window of a session may go before the session does; what still arrives then finds no view.
void on_conversation_destroyed(GtkWidget *, ChatWindow *chatwindow)
{
    g_clear_handle_id(&chatwindow->scrollSource, g_source_remove);
    g_clear_pointer(&chatwindow->shownSender, g_free);
    chatwindow->chatview = nullptr;
}

gboolean scrollToEnd(gpointer data)
{
    auto *const chatwindow = static_cast<ChatWindow *>(data);
    chatwindow->scrollSource = 0;
    GtkTextView *const view = GTK_TEXT_VIEW(chatwindow->chatview);
    gtk_text_view_scroll_mark_onscreen(view, markLastPosition(gtk_text_view_get_buffer(view)));
    return G_SOURCE_REMOVE;
}

GtkWidget *newConversation(ChatWindow *chatwindow)
{
    GtkWidget *const view = gtk_text_view_new();
    chatwindow->chatview = view;
    connect_signal(view, "destroy", on_conversation_destroyed, chatwindow);
    gtk_widget_set_name(view, "ChatRecive");
    atk_object_set_name(gtk_widget_get_accessible(view), getString("Conversation"));
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), false);
    gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), false);
    return view;
}

/// The caret stays black whatever the style sheet and the theme say.
void blackenCaret(GtkWidget *view)
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, "* { caret-color: #000000; -gtk-secondary-caret-color: #000000; }", -1,
                                    nullptr);
    gtk_style_context_add_provider(gtk_widget_get_style_context(view), GTK_STYLE_PROVIDER(provider),
                                   GTK_STYLE_PROVIDER_PRIORITY_USER);
}

GtkWidget *newInput()
{
    GtkWidget *const view = gtk_text_view_new();
    gtk_text_view_set_indent(GTK_TEXT_VIEW(view), inputIndentPx);
    gtk_widget_set_name(view, "ChatSend");
    atk_object_set_name(gtk_widget_get_accessible(view), getString("Message"));
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    g_object_set(view, "margin", inputMarginPx, nullptr);
    blackenCaret(view);
    return view;
}

} // namespace

GtkWidget *ChatWindowNew(ChatWindow *chatwindow)
{
    UI_ENTER();
    chatwindow->clickableRange = g_new0(ClickableRange, 1);
    replace_text(chatwindow->charSender, "1");
    replace_text(chatwindow->shownSender, "1");
    chatwindow->isChatTranscriptEnabled = false;

    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    GtkWidget *const conversation = newConversation(chatwindow);
    gtk_box_pack_start(GTK_BOX(box), newScrolledWindow(conversation, conversationHeightPx), true, true, 0);
    GtkWidget *const input = newInput();
    GtkWidget *const inputArea = newScrolledWindow(input, inputHeightPx);
    g_object_set(inputArea, "margin", inputAreaMarginPx, nullptr);
    gtk_box_pack_end(GTK_BOX(box), inputArea, false, true, 0);

    createBufferTags(gtk_text_view_get_buffer(GTK_TEXT_VIEW(conversation)));
    connect_signal(input, "key-release-event", on_key_press, chatwindow);
    connect_signal(conversation, "button-press-event", on_text_view_button_press, chatwindow);
    return box;
}

int createBufferTags(GtkTextBuffer *buffer)
{
    UI_ENTER();
    for (const TagProperty &row : tagProperties) {
        GtkTextTag *const tag = findOrCreateTag(buffer, row.tag);
        if (row.text)
            g_object_set(tag, row.property, row.text, nullptr);
        else
            g_object_set(tag, row.property, row.number, nullptr);
    }
    return 0;
}

void appendTagged(GtkTextBuffer *buffer, const char *text, std::initializer_list<const char *> tags)
{
    const OwnedText valid = breakable_text(text);
    GtkTextIter start, end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    const int offset = gtk_text_iter_get_offset(&end);
    gtk_text_buffer_insert(buffer, &end, valid.get(), -1);
    gtk_text_buffer_get_iter_at_offset(buffer, &start, offset);
    for (const char *const tag : tags)
        gtk_text_buffer_apply_tag_by_name(buffer, tag, &start, &end);
}

bool startBlock(ChatWindow *chatwindow, const char *author)
{
    if (g_strcmp0(chatwindow->shownSender, author) == 0)
        return false;
    replace_text(chatwindow->shownSender, author);
    return true;
}

GtkTextMark *markLastPosition(GtkTextBuffer *buffer)
{
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    // Moves the mark when it is there already.
    return gtk_text_buffer_create_mark(buffer, "last_pos", &end, false);
}

void scrollAgainWhenLaidOut(ChatWindow *chatwindow)
{
    // Below the priority at which the toolkit measures lines and lays windows out.
    if (chatwindow->scrollSource == 0)
        chatwindow->scrollSource = g_idle_add_full(G_PRIORITY_LOW, scrollToEnd, chatwindow, nullptr);
}
