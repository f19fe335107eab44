// Both directions of the conversation. What the agent sends is taken apart on a thread of its own, noted in the
// transcript and handed to the main thread; what the customer types is rendered, noted and sent at once.
// The authors and the transcript are shared by both directions, under `ChatWindow.mutex`.

#include "src/Chat/chatFlow.h"

#include "Logger/logger.h"
#include "src/Chat/chatTranscript.h"
#include "src/Chat/chatView.h"
#include "src/IdleThread/chatUpdate.h"
#include "src/Utils/pipeTransport.h"
#include "src/sessionState.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

constexpr char ownSender[] = "you\n"; // with its line end, as it stands in the view; no name can equal it
constexpr int usedPieces = 3;         // name, text, and what is behind a second line end, which nothing reads

void resetConversation(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    chatwindow->AgentMessage = 0;
    chatwindow->isdifferentsender = false;
    if (!chatwindow->chatData)
        chatwindow->chatData = g_string_new(nullptr);
    g_string_truncate(chatwindow->chatData, 0);
}

bool hasConversation(ChatWindow *chatwindow)
{
    const MutexLock lock(&chatwindow->mutex);
    return chatwindow->chatData && chatwindow->chatData->len > 0;
}

/// Makes somebody the author of the last message. @return true when it was another one.
bool replaceSender(ChatWindow *chatwindow, const char *sender)
{
    const MutexLock lock(&chatwindow->mutex);
    if (g_strcmp0(chatwindow->charSender, sender) == 0)
        return false;
    replace_text(chatwindow->charSender, sender);
    return true;
}

// An entry and the count that the next one goes by change under one lock: between them the other direction could put
// its words under the wrong name.

void noteReceived(ChatWindow *chatwindow, const ReceivedMessage &received, const struct tm &now,
                  const struct tm &previous)
{
    if (received.startsBlock)
        log_print(levelTrace, __LINE__, "ChatParserfunc", "Senders are different");
    const MutexLock lock(&chatwindow->mutex);
    if (received.startsBlock)
        appendFullEntry(chatwindow, received.sender.get(), received.text.get(), now);
    else
        appendEntry(received.text.get(), received.sender.get(), chatwindow, now, previous);
    chatwindow->AgentMessage = 0;
}

/// @param previous  time of the message before, replaced by that of this one
void receive(ChatWindow *chatwindow, const char *queued, struct tm &previous)
{
    const OwnedTexts pieces(g_strsplit(queued, "\n", usedPieces));
    struct tm now;
    time_data(&now);
    ReceivedMessage received;
    received.sender.reset(g_strdup(piece_or_empty(pieces.get(), 0)));
    if (g_strv_length(pieces.get()) > 1)
        received.text = unescape_text(pieces.get()[1]);
    received.startsBlock = replaceSender(chatwindow, received.sender.get());
    noteReceived(chatwindow, received, now, previous);
    previous = now;
    deliverToView(chatwindow, std::move(received));
}

bool isSendKey(const GdkEventKey *event)
{
    if (event->type != GDK_KEY_RELEASE)
        return false;
    const char *const name = gdk_keyval_name(event->keyval);
    return g_strcmp0(name, "Return") == 0 || g_strcmp0(name, "KP_Enter") == 0;
}

/// Nothing worth sending. Five line ends or two blanks are sent: the list is complete.
bool isBlankInput(const char *text)
{
    static constexpr const char *blanks[] = {"", "\n", " ", "\n\n", "\n\n\n", "\n\n\n\n"};
    return std::any_of(std::begin(blanks), std::end(blanks),
                       [text](const char *blank) { return strcmp(text, blank) == 0; });
}

OwnedText readInput(GtkTextBuffer *buffer)
{
    GtkTextIter start, end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    return OwnedText(gtk_text_buffer_get_text(buffer, &start, &end, true));
}

void renderSent(ChatWindow *chatwindow, const char *text)
{
    GtkTextView *const view = GTK_TEXT_VIEW(chatwindow->chatview);
    GtkTextBuffer *const buffer = gtk_text_view_get_buffer(view);
    replaceSender(chatwindow, ownSender);
    if (startBlock(chatwindow, ownSender))
        appendTagged(buffer, ownSender, {"rmarg_user", "gray_bg", "rightustification", "big", "usercolor"});
    appendTagged(buffer, text, {"rmarg", "gray_bg", "msg_size", "rightustification", "sendercolor"});
    gtk_text_view_scroll_mark_onscreen(view, markLastPosition(buffer));
    scrollAgainWhenLaidOut(chatwindow);
}

void noteSent(ChatWindow *chatwindow, const char *text, const struct tm &now)
{
    const MutexLock lock(&chatwindow->mutex);
    chatwindow->AgentMessage++;
    appendEntry(text, "you", chatwindow, now, chatwindow->previousTimeStamp);
    chatwindow->previousTimeStamp = now;
}

/// The line has no line end of its own: the typed one travels escaped.
void sendText(const char *text)
{
    g_autofree char *escaped = g_uri_escape_string(text, nullptr, true);
    g_autofree char *line = g_strdup_printf("chat %s", escaped);
    pipewriter(g_UiStatus, line);
}

} // namespace

gpointer ChatParserfunc(gpointer data)
{
    auto *const chatwindow = static_cast<ChatWindow *>(data);
    UI_ENTER();
    resetConversation(chatwindow);
    struct tm previous = {};
    while (g_threadChecker) {
        if (!chatwindow->isChatTranscriptEnabled && hasConversation(chatwindow))
            enableChatTranscriptButton(chatwindow);
        const OwnedText queued = popText(messageQueue);
        if (strcmp(queued.get(), stopSentinel) == 0)
            break;
        receive(chatwindow, queued.get(), previous);
    }
    return nullptr;
}

gboolean on_key_press(GtkWidget *widget, GdkEventKey *event, ChatWindow *chatwindow)
{
    UI_ENTER();
    struct tm now;
    time_data(&now);
    if (!isSendKey(event))
        return false;
    GtkTextBuffer *const input = gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget));
    const OwnedText text = readInput(input);
    if (isBlankInput(text.get()))
        return false;
    gtk_text_buffer_set_text(input, "", 0);
    renderSent(chatwindow, text.get());
    if (!chatwindow->isChatTranscriptEnabled)
        enableChatTranscriptButton(chatwindow);
    noteSent(chatwindow, text.get(), now);
    sendText(text.get());
    return false;
}
