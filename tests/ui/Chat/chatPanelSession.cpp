#include "tests/ui/Chat/chatPanelSession.h"

#include <algorithm>
#include <ostream>

namespace
{

std::string textOf(GtkTextBuffer *buffer)
{
    GtkTextIter start, end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    g_autofree char *text = gtk_text_buffer_get_text(buffer, &start, &end, true);
    return text;
}

std::vector<std::string> tagNames(const GtkTextIter *place)
{
    std::vector<std::string> names;
    GSList *const tags = gtk_text_iter_get_tags(place);
    for (const GSList *each = tags; each; each = each->next) {
        g_autofree char *name = nullptr;
        g_object_get(each->data, "name", &name, nullptr);
        names.emplace_back(name);
    }
    g_slist_free(tags);
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

bool operator==(const Piece &left, const Piece &right)
{
    return left.text == right.text && left.tags == right.tags;
}

std::ostream &operator<<(std::ostream &out, const Piece &run)
{
    out << "\"" << run.text << "\" [";
    for (const std::string &tag : run.tags)
        out << " " << tag;
    return out << " ]";
}

void ChatPanelSession::SetUp()
{
    WindowSession::SetUp();
    m_thread = g_thread_new("Brindle-checkC", ChatParserfunc, chatWindow);
    ASSERT_TRUE(waitUntil([&] {
        const MutexLock lock(&chatWindow->mutex);
        return chatWindow->chatData != nullptr;
    }));
}

void ChatPanelSession::TearDown()
{
    pushText(messageQueue, OwnedText(g_strdup(stopSentinel)));
    g_thread_join(m_thread);
    WindowSession::TearDown();
}

GtkTextView *ChatPanelSession::input() const
{
    return GTK_TEXT_VIEW(findByName(mainWindow->window, "ChatSend"));
}

std::string ChatPanelSession::shown() const
{
    return textOf(buffer());
}

std::vector<Piece> ChatPanelSession::runs() const
{
    std::vector<Piece> found;
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer(), &start);
    while (!gtk_text_iter_is_end(&start)) {
        GtkTextIter end = start;
        gtk_text_iter_forward_to_tag_toggle(&end, nullptr);
        g_autofree char *text = gtk_text_iter_get_text(&start, &end);
        found.push_back({text, tagNames(&start)});
        start = end;
    }
    return found;
}

void ChatPanelSession::openPanel()
{
    gtk_button_clicked(GTK_BUTTON(mainWindow->chat->button));
    if (!isShown(chatWindow->chatview)) {
        gtk_widget_show_all(chatWindow->chat_area);
        chatWindow->chatExpander->isVisible = true;
    }
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(chatWindow->chatview); }));
    drainMainLoop();
}

void ChatPanelSession::receive(const std::string &text)
{
    pushText(messageQueue, OwnedText(g_strdup(text.c_str())));
}

void ChatPanelSession::awaitShown(const std::string &text)
{
    ASSERT_TRUE(waitUntil([&] { return shown().find(text) != std::string::npos; }, [&] { return shown(); }));
}

void ChatPanelSession::awaitDelivered()
{
    for (bool isThere = false; !isThere; g_usleep(1000)) {
        const MutexLock lock(&chatWindow->mutex);
        isThere = !g_queue_is_empty(&chatWindow->received);
    }
}

void ChatPanelSession::type(const std::string &text, guint key)
{
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(input()), text.c_str(), int(text.size()));
    GdkEventKey event = {};
    event.type = GDK_KEY_RELEASE;
    event.keyval = key;
    EXPECT_FALSE(on_key_press(GTK_WIDGET(input()), &event, chatWindow));
}

std::string ChatPanelSession::typed() const
{
    return textOf(gtk_text_view_get_buffer(input()));
}
