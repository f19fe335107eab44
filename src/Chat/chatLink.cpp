// The one clickable word of the conversation: the end of the invitation to an AR session.

#include "src/Chat/chatView.h"

#include "Logger/logger.h"
#include "src/Utils/webview.h"
#include "src/support.h"

#include <cstring>

namespace
{

constexpr char clickableWord[] = "join now.";
// Not translated: a translation without the clickable word would be an invitation that nobody can take.
constexpr char invitationFormat[] =
    " %s has initiated an AR \n assistance session. join now.\n To suspend screen sharing, click pause.";
constexpr char unnamedTechnician[] = "The Technician";

/// Character offset of the click in the conversation.
int offsetOfClick(GtkTextView *view, const GdkEventButton *event)
{
    int x = 0, y = 0;
    gtk_text_view_window_to_buffer_coords(view, GTK_TEXT_WINDOW_TEXT, int(event->x), int(event->y), &x, &y);
    GtkTextIter place;
    gtk_text_view_get_iter_at_location(view, &place, x, y);
    return gtk_text_iter_get_offset(&place);
}

/// A copy, since the next invitation may replace the address at any moment.
OwnedText copySessionUrl(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    return OwnedText(g_strdup(chatwindow->ArSessionUrl));
}

bool isLive(const ClickableRange *range, int offset)
{
    return range && range->cb && range->start <= offset && offset <= range->end;
}

/// Underlines the word and makes it the live one.
/// Its place counts bytes of the text as characters of the conversation: behind a name with multi-byte characters
/// both the underline and the live range sit to the right by the surplus. Kept on purpose.
void activateWord(GtkTextBuffer *buffer, const ClickableRange &range, ClickableRange *live)
{
    GtkTextIter start, end;
    gtk_text_buffer_get_iter_at_offset(buffer, &start, range.start);
    gtk_text_buffer_get_iter_at_offset(buffer, &end, range.end);
    gtk_text_buffer_apply_tag_by_name(buffer, "clickable_word", &start, &end);
    live->start = range.start;
    live->end = range.end;
    live->cb = range.cb;
}

void appendLineEndAndShow(GtkTextView *view)
{
    GtkTextBuffer *const buffer = gtk_text_view_get_buffer(view);
    appendTagged(buffer, "\n", {});
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    GtkTextMark *const mark = gtk_text_buffer_create_mark(buffer, nullptr, &end, false);
    gtk_text_view_scroll_mark_onscreen(view, mark);
    gtk_text_buffer_delete_mark(buffer, mark);
}

} // namespace

gboolean on_text_view_button_press(GtkWidget *widget, GdkEventButton *event, ChatWindow *chatwindow)
{
    UI_ENTER();
    if (event->type != GDK_BUTTON_PRESS || event->button != GDK_BUTTON_PRIMARY)
        return false;
    const ClickableRange *const range = chatwindow->clickableRange;
    if (!isLive(range, offsetOfClick(GTK_TEXT_VIEW(widget), event)))
        return false;
    const OwnedText url = copySessionUrl(chatwindow);
    UI_INFO("Clickable word clicked, invoking callback.loading.... %s", url ? url.get() : "(null)");
    range->cb(url.get(), chatwindow);
    return false;
}

void append_message_with_clickable_range_word(GtkTextView *view, const char *text, const char *word,
                                              ClickableCallback callback, ChatWindow *chatwindow)
{
    UI_ENTER();
    if (!view || !text)
        return;
    GtkTextBuffer *const buffer = gtk_text_view_get_buffer(view);
    const OwnedText shown = breakable_text(text);
    const int base = gtk_text_buffer_get_char_count(buffer);
    appendTagged(buffer, shown.get(), {"blue_box"});
    const char *const found = word && callback ? strstr(shown.get(), word) : nullptr;
    if (found) {
        const int start = base + int(found - shown.get());
        activateWord(buffer, {start, start + int(strlen(word)), callback, nullptr}, chatwindow->clickableRange);
    }
    appendLineEndAndShow(view);
    scrollAgainWhenLaidOut(chatwindow);
}

gboolean AddLenSession(_AddLenSessionData *data)
{
    UI_ENTER();
    const bool isNamed = data->technicianName && *data->technicianName;
    const OwnedText name = isNamed ? displayable_name(data->technicianName) : nullptr;
    g_autofree char *text = g_strdup_printf(invitationFormat, isNamed ? name.get() : unnamedTechnician);
    if (data->chatwindow->chatview)
        append_message_with_clickable_range_word(GTK_TEXT_VIEW(data->chatwindow->chatview), text, clickableWord,
                                                 LoadWebviewWrapper, data->chatwindow);
    g_free(data->technicianName);
    g_free(data);
    return G_SOURCE_REMOVE;
}

void LoadWebviewWrapper(const char *url, ChatWindow *chatwindow)
{
    UI_ENTER();
    if (!url || !chatwindow)
        return;
    UI_INFO("Loading webview URL: %s", url);
    LoadWebview(url, chatwindow);
}
