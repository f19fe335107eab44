// A session for fuzzers. Workers run here as in the program, but one input at a time: each is joined before the next.

#include "tests/fuzz/fuzzing.h"

#include "src/Chat/chatFlow.h"
#include "src/sessionState.h"
#include "src/support.h"
#include "src/thread/thread.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <iterator>
#include <thread>

namespace
{

constexpr guint chooserPeriodMs = 5;
constexpr int sendResponse = 12;
constexpr char chosenFile[] = "/etc/passwd";
constexpr char substitute = 0x1a; // what the reader of the pipe puts in the place of a NUL byte
constexpr gint64 settleUs = 10000;

std::unique_ptr<FuzzSession> session;
// The input had the program asked to end: its session is over. From any thread.
std::atomic<bool> isEndAsked = false;
bool areFilesChosen = false;

/// An answer that may be without effect, as a chooser without a file takes no agreement, and then one that never is.
void answerChooser(GtkWidget *chooser)
{
    gtk_file_chooser_select_filename(GTK_FILE_CHOOSER(chooser), chosenFile);
    GtkDialog *const dialog = GTK_DIALOG(chooser);
    const int agreement = gtk_dialog_get_widget_for_response(dialog, sendResponse) ? sendResponse : GTK_RESPONSE_ACCEPT;
    const bool isAsked = g_object_get_data(G_OBJECT(chooser), "is-asked");
    g_object_set_data(G_OBJECT(chooser), "is-asked", chooser);
    gtk_dialog_response(dialog, areFilesChosen && !isAsked ? agreement : GTK_RESPONSE_CANCEL);
}

/// A chooser runs a loop of its own, which only an answer ends.
gboolean answerChoosers(gpointer)
{
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    for (GList *each = windows; each; each = each->next)
        if (GTK_IS_FILE_CHOOSER_DIALOG(each->data) && gtk_widget_get_visible(GTK_WIDGET(each->data)))
            answerChooser(GTK_WIDGET(each->data));
    return G_SOURCE_CONTINUE;
}

gboolean noteEnd(std::atomic<bool> *isDone)
{
    *isDone = true;
    return G_SOURCE_REMOVE;
}

/// Runs a worker to its end and all that it asked of the main loop; then shows it for a moment. Draining the loop would
/// take for ever: dialogs have animations.
template <class Work> void workAndShow(Work work)
{
    std::atomic<bool> isDone = false;
    std::thread([&] {
        work();
        run_on_main(noteEnd, &isDone);
    }).join();
    while (!isDone)
        g_main_context_iteration(nullptr, FALSE);
    const gint64 end = g_get_monotonic_time() + settleUs;
    while (g_main_context_iteration(nullptr, FALSE) && g_get_monotonic_time() < end) {
    }
}

/// A text that says what the sentinel says ends the reception early.
void dropWaiting(GAsyncQueue *queue)
{
    while (g_async_queue_length(queue) > 0)
        popText(queue);
}

/// Rows of participants carry their ID as name; the panel's notice is a label.
void removeRow(GtkWidget *child, gpointer)
{
    if (GTK_IS_CONTAINER(child))
        gtk_widget_destroy(child);
}

} // namespace

/// Takes the place of the program's own in every fuzzer: what asks for the end of the program ends its session, and the
/// next input finds another one.
extern "C" void endSession() __asm__("__wrap__Z12request_quitv");
extern "C" void endSession()
{
    isEndAsked = true;
}

std::string textOf(const uint8_t *data, const size_t size)
{
    std::string bytes(reinterpret_cast<const char *>(data), size);
    std::replace(bytes.begin(), bytes.end(), '\0', substitute);
    return bytes;
}

void failOnWarnings()
{
    g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
}

FuzzSession::FuzzSession()
{
    signal(SIGPIPE, SIG_IGN);
    gtk_init(nullptr, nullptr);
    failOnWarnings();
    [[maybe_unused]] static const guint timer = g_timeout_add(chooserPeriodMs, answerChoosers, nullptr); // one for all
    SetUp();
}

FuzzSession::~FuzzSession()
{
    TearDown();
    g_clear_pointer(&messageQueue, g_async_queue_unref);
    g_clear_pointer(&pipeMessageQueue, g_async_queue_unref);
}

FuzzSession &FuzzSession::current()
{
    if (session && (isEndAsked.exchange(false) || !session->hasWindow()))
        session.reset();
    if (!session)
        session.reset(new FuzzSession);
    return *session;
}

void FuzzSession::receive(const std::string &text, const bool choosesFiles)
{
    areFilesChosen = choosesFiles;
    pushText(pipeMessageQueue, OwnedText(g_strdup(text.c_str())));
    pushText(pipeMessageQueue, OwnedText(g_strdup(stopSentinel)));
    workAndShow([this] {
        ThreadData data = {mainWindow, chatWindow, nullptr};
        messageParser(&data);
    });
    dropWaiting(pipeMessageQueue);
    receiveWaitingChat();
}

void FuzzSession::receiveChat(const std::string &text)
{
    pushText(messageQueue, OwnedText(g_strdup(text.c_str())));
    receiveWaitingChat();
}

void FuzzSession::receiveWaitingChat()
{
    if (g_async_queue_length(messageQueue) == 0)
        return;
    pushText(messageQueue, OwnedText(g_strdup(stopSentinel)));
    workAndShow([this] { ChatParserfunc(chatWindow); });
    dropWaiting(messageQueue);
}

void FuzzSession::answerDialogs(size_t choice)
{
    constexpr int answers[] = {GTK_RESPONSE_ACCEPT, GTK_RESPONSE_REJECT, GTK_RESPONSE_DELETE_EVENT, 1,
                               GTK_RESPONSE_NONE};
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    g_list_foreach(
        windows, [](gpointer window, gpointer) { g_object_ref(window); }, nullptr);
    for (GList *each = windows; each; each = each->next) {
        if (GTK_IS_DIALOG(each->data) && !GTK_IS_FILE_CHOOSER_DIALOG(each->data) &&
            !gtk_widget_in_destruction(GTK_WIDGET(each->data)))
            gtk_dialog_response(GTK_DIALOG(each->data), answers[choice++ % std::size(answers)]);
        g_object_unref(each->data);
    }
    workAndShow([] {});
}

void FuzzSession::tidyUp()
{
    agent->forget();
    if (!hasWindow())
        return;
    gtk_container_foreach(GTK_CONTAINER(mainWindow->participantsExpander->expanderContent), removeRow, nullptr);
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(chatWindow->chatview)), "", 0);
    if (chatWindow->chatData)
        g_string_truncate(chatWindow->chatData, 0);
}
