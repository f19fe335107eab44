// The main thread's end of reception. Messages wait in `ChatWindow.received`, so that none is lost however many come
// before the main loop turns; one callback at a time works them off.

#include "src/IdleThread/chatUpdate.h"

#include "Logger/logger.h"
#include "src/Chat/chatView.h"
#include "src/Utils/panels.h"

#include <memory>

namespace
{

// Then the other callbacks get their turn: half of the time they have together before the screen gets its own, so that
// none of them waits for a second one while messages pour in.
constexpr gint64 renderTimeUs = 4000;

void openPanel(ChatWindow *chatwindow)
{
    if (!chatwindow->chatExpander || chatwindow->chatExpander->isVisible)
        return;
    gtk_widget_show_all(chatwindow->chat_area);
    chatwindow->chatExpander->isVisible = true;
    chatwindow->chat->buttonState = 1;
    setArrow(chatwindow->chatExpander, true, GTK_ICON_SIZE_SMALL_TOOLBAR);
}

std::unique_ptr<ReceivedMessage> takeDelivered(ChatWindow *chatwindow)
{
    std::unique_ptr<ReceivedMessage> next(static_cast<ReceivedMessage *>(g_queue_pop_head(&chatwindow->received)));
    if (g_queue_is_empty(&chatwindow->received))
        g_clear_pointer(&chatwindow->message, g_free);
    // What the customer sent meanwhile may stand before it.
    next->startsBlock = startBlock(chatwindow, next->sender.get());
    return next;
}

/// What the record alone holds, shown as the record says; null when it holds nothing.
std::unique_ptr<ReceivedMessage> takeLeft(ChatWindow *chatwindow)
{
    if (!chatwindow->message)
        return nullptr;
    auto left = std::make_unique<ReceivedMessage>();
    left->text.reset(g_steal_pointer(&chatwindow->message));
    left->sender.reset(g_strdup(chatwindow->charSender));
    left->startsBlock = chatwindow->isdifferentsender;
    startBlock(chatwindow, left->sender.get());
    return left;
}

/// The next message to render; null when there is none.
std::unique_ptr<ReceivedMessage> takeNext(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    return g_queue_is_empty(&chatwindow->received) ? takeLeft(chatwindow) : takeDelivered(chatwindow);
}

void render(GtkTextBuffer *buffer, const ReceivedMessage &received)
{
    if (!received.text)
        return;
    if (received.startsBlock) {
        appendTagged(buffer, "\n", {});
        appendTagged(buffer, displayable_name(received.sender.get()).get(),
                     {"lmarg_user", "gray_bg", "leftjustification", "big", "usercolor"});
        appendTagged(buffer, "\n", {});
    }
    appendTagged(buffer, received.text.get(), {"lmarg", "gray_bg", "msg_size", "leftjustification", "recivercolor"});
    appendTagged(buffer, "\n", {});
}

/// Renders for a moment. @return true when at least one text was shown.
bool renderWaiting(ChatWindow *chatwindow, GtkTextBuffer *buffer)
{
    bool isChanged = false;
    const gint64 deadlineUs = g_get_monotonic_time() + renderTimeUs;
    do {
        const std::unique_ptr<ReceivedMessage> next = takeNext(chatwindow);
        if (!next)
            break;
        render(buffer, *next);
        isChanged = isChanged || next->text;
    } while (g_get_monotonic_time() < deadlineUs);
    return isChanged;
}

void scrollToEnd(ChatWindow *chatwindow, GtkTextBuffer *buffer)
{
    GtkTextMark *const end = markLastPosition(buffer);
    if (!gtk_widget_get_realized(chatwindow->chatview))
        return;
    gtk_text_view_scroll_to_mark(GTK_TEXT_VIEW(chatwindow->chatview), end, 0, false, 0, 0);
    scrollAgainWhenLaidOut(chatwindow);
}

/// Has the rest rendered; without a rest the next message schedules anew.
void scheduleRest(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    chatwindow->isUpdateScheduled = !g_queue_is_empty(&chatwindow->received);
    if (chatwindow->isUpdateScheduled)
        schedule_on_main(UpdateChat, chatwindow);
}

/// The window of the conversation has gone: what still comes is in the transcript only.
void dropWaiting(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    while (auto *const dropped = static_cast<ReceivedMessage *>(g_queue_pop_head(&chatwindow->received)))
        delete dropped;
    g_clear_pointer(&chatwindow->message, g_free);
}

} // namespace

void deliverToView(ChatWindow *chatwindow, ReceivedMessage received)
{
    const MutexLock lock(&chatwindow->mutex);
    replace_text(chatwindow->message, received.text.get());
    chatwindow->isdifferentsender = received.startsBlock;
    g_queue_push_tail(&chatwindow->received, new ReceivedMessage(std::move(received)));
    if (chatwindow->isUpdateScheduled)
        return;
    chatwindow->isUpdateScheduled = true;
    schedule_on_main(UpdateChat, chatwindow);
}

gboolean UpdateChat(ChatWindow *chatwindow)
{
    UI_ENTER();
    if (chatwindow->chatview) {
        GtkTextBuffer *const buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(chatwindow->chatview));
        openPanel(chatwindow);
        if (renderWaiting(chatwindow, buffer))
            scrollToEnd(chatwindow, buffer);
    } else {
        dropWaiting(chatwindow);
    }
    scheduleRest(chatwindow);
    return G_SOURCE_REMOVE;
}
