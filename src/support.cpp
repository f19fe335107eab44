// Ground floor. Owns the two process-wide facts that everybody asks for: which thread is the main one, and whether the
// program was asked to end.

#include "src/support.h"

#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <utility>

namespace
{

// A key or an address that is copied out of a view comes out as it went in; what goes on longer is no word to copy.
constexpr glong longestExactWord = 4000;
// Far more than any window shows, quickly laid out, and with the signs beside it still an exact word.
constexpr glong longestName = 3900;
constexpr glong breakDistance = 500;
constexpr gunichar invisibleBreak = 0x200b;

// Written by adopt_main_thread before any other thread runs.
GThread *mainThread = nullptr;
// Set once by request_quit, from any thread.
std::atomic<bool> quitRequested = false;
// Written by on_quit_request.
void (*quitRequestCall)() = nullptr;
// Dialogs that run a loop of their own, innermost first. Main thread.
GSList *nestedDialogs = nullptr;

// How long callbacks run before the window may draw and answer again.
constexpr gint64 sliceUs = 8000;
// How long they may wait while the window does nothing but draw; drawing keeps most of the time even so, unless one
// callback takes longer than that.
constexpr guint starvingMs = 20;
// How soon dialogs that have not gone are told once more to go.
constexpr guint cancelAgainMs = 50;

/// A callback on its way to the main thread.
struct Task {
    MainCall call;
    Task *next;
};

void run(const MainCall &call)
{
    call.call(call.callback, call.record);
}

// The callbacks in their order, and whether the sources are there that run them; under `tasksMutex`. One source runs
// them all when the window has nothing to do: an agent may send a hundred thousand lines in one text. The other one
// runs them when drawing leaves no time, as a file chooser's animation does on a slow machine.
GMutex tasksMutex;
Task *firstTask = nullptr;
Task *lastTask = nullptr;
bool isIdleSourceAttached = false;
bool isTimeoutAttached = false;

/// The next callback; one without a function when there is none, and then the source that asks is to go.
MainCall takeTask(bool *isAttached)
{
    const MutexLock lock(&tasksMutex);
    if (!firstTask) {
        *isAttached = false;
        return {};
    }
    Task *const taken = firstTask;
    const MainCall call = taken->call;
    firstTask = taken->next;
    if (!firstTask)
        lastTask = nullptr;
    g_free(taken);
    return call;
}

gboolean runTasks(gpointer isAttached)
{
    const gint64 end = g_get_monotonic_time() + sliceUs;
    while (!quit_requested()) {
        const MainCall next = takeTask(static_cast<bool *>(isAttached));
        if (!next.callback)
            return G_SOURCE_REMOVE;
        run(next);
        if (g_get_monotonic_time() >= end)
            return G_SOURCE_CONTINUE;
    }
    return G_SOURCE_REMOVE; // what is left when the program is to end stays undone
}

void attach(GSource *source, bool *isAttached)
{
    g_source_set_callback(source, runTasks, isAttached, nullptr);
    // A callback may run a loop of its own, a file chooser's; the others go on meanwhile.
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

const char *endOfWord(const char *at)
{
    for (; *at; at = g_utf8_next_char(at)) {
        const gunichar character = g_utf8_get_char(at);
        if (g_unichar_isspace(character) || character == invisibleBreak)
            break;
    }
    return at;
}

void appendWord(GString *text, const char *word, const char *end)
{
    if (g_utf8_strlen(word, end - word) <= longestExactWord) {
        g_string_append_len(text, word, end - word);
        return;
    }
    glong length = 0;
    for (const char *at = word; at < end; at = g_utf8_next_char(at)) {
        g_string_append_unichar(text, g_utf8_get_char(at));
        if (++length % breakDistance == 0)
            g_string_append_unichar(text, invisibleBreak);
    }
}

/// A button whose handler runs a loop of its own. Goes with the button.
struct NestedClick {
    GtkWidget *button;
    ClickCall call;
    guint source; ///< calls the handler; 0 when there is no click to be handled
};

gboolean runNestedClick(gpointer data)
{
    auto *const click = static_cast<NestedClick *>(data);
    click->source = 0;
    const ClickCall call = click->call; // the button may go while the handler runs
    call.call(call.handler, click->button, call.record);
    return G_SOURCE_REMOVE;
}

void scheduleNestedClick(GtkWidget *, NestedClick *click)
{
    if (click->source == 0)
        click->source = g_idle_add_full(G_PRIORITY_HIGH, runNestedClick, click, nullptr);
}

void freeNestedClick(gpointer data, GClosure *)
{
    auto *const click = static_cast<NestedClick *>(data);
    if (click->source != 0)
        g_source_remove(click->source);
    g_free(click);
}

void cancel(gpointer dialog, gpointer)
{
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
}

/// True for a message that the toolkit shows over one of those dialogs, in a loop of the toolkit's own.
bool isOverNestedDialog(GtkWindow *window)
{
    while ((window = gtk_window_get_transient_for(window)))
        if (g_slist_find(nestedDialogs, window))
            return true;
    return false;
}

void cancelMessage(gpointer window, gpointer)
{
    if (GTK_IS_DIALOG(window) && isOverNestedDialog(GTK_WINDOW(window)))
        cancel(window, nullptr);
}

gboolean cancelDialogs(gpointer)
{
    GList *const windows = gtk_window_list_toplevels();
    // A message may destroy itself, and others with it.
    for (const GList *each = windows; each; each = each->next)
        g_object_ref(each->data);
    g_list_foreach(windows, cancelMessage, nullptr);
    g_list_free_full(windows, g_object_unref);
    g_slist_foreach(nestedDialogs, cancel, nullptr);
    return G_SOURCE_CONTINUE;
}

gboolean endMainLoop(gpointer)
{
    cancelDialogs(nullptr);
    // A chooser that has just been told to go may still open a message, and wait for it.
    g_timeout_add_full(GDK_PRIORITY_EVENTS, cancelAgainMs, cancelDialogs, nullptr, nullptr);
    if (gtk_main_level() > 0)
        gtk_main_quit();
    return G_SOURCE_REMOVE;
}

} // namespace

void replace_text(char *&field, const char *text)
{
    char *const copy = g_strdup(text);
    g_free(field);
    field = copy;
}

GtkWidget *keep_widget(GtkWidget *widget)
{
    return GTK_WIDGET(g_object_ref_sink(widget));
}

void replace_widget(GtkWidget *&field, GtkWidget *widget)
{
    g_object_ref_sink(widget);
    g_clear_object(&field);
    field = widget;
}

OwnedText displayable_text(const char *text)
{
    return OwnedText(g_utf8_make_valid(text ? text : "", -1));
}

OwnedText displayable_name(const char *name)
{
    OwnedText shown = displayable_text(name);
    if (g_utf8_strlen(shown.get(), -1) <= longestName)
        return shown;
    g_autofree char *beginning = g_utf8_substring(shown.get(), 0, longestName);
    return OwnedText(g_strconcat(beginning, "\u2026", nullptr));
}

OwnedText breakable_text(const char *text)
{
    OwnedText shown = displayable_text(text);
    if (strlen(shown.get()) <= gsize(longestExactWord))
        return shown;
    GString *const broken = g_string_new(nullptr);
    const char *at = shown.get();
    while (*at) {
        const char *const end = endOfWord(at);
        appendWord(broken, at, end);
        at = *end ? g_utf8_next_char(end) : end;
        g_string_append_len(broken, end, at - end);
    }
    return OwnedText(g_string_free(broken, FALSE));
}

const char *piece_or_empty(char *const *pieces, guint index)
{
    for (guint i = 0; pieces[i]; i++)
        if (i == index)
            return pieces[i];
    return "";
}

void adopt_main_thread()
{
    mainThread = g_thread_self();
}

void run_on_main_untyped(const MainCall &call)
{
    if (g_thread_self() == mainThread) {
        run(call);
        return;
    }
    schedule_on_main_untyped(call);
}

void schedule_on_main_untyped(const MainCall &call)
{
    auto *const task = g_new(Task, 1);
    *task = {call, nullptr};
    const MutexLock lock(&tasksMutex);
    (lastTask ? lastTask->next : firstTask) = task;
    lastTask = task;
    if (!std::exchange(isIdleSourceAttached, true))
        attach(g_idle_source_new(), &isIdleSourceAttached);
    if (!std::exchange(isTimeoutAttached, true))
        attach(g_timeout_source_new(starvingMs), &isTimeoutAttached);
}

void connect_nested_click_untyped(GtkWidget *button, const ClickCall &call)
{
    auto *const click = g_new(NestedClick, 1);
    *click = {button, call, 0};
    g_signal_connect_data(button, "clicked", G_CALLBACK(scheduleNestedClick), click, freeNestedClick, GConnectFlags(0));
}

void request_quit()
{
    if (quitRequested.exchange(true))
        return;
    // From the main thread, too: a handler that asks for the end still finishes what it does first. Callbacks that wait
    // behind a flood of lines don't delay the end. No sooner than the toolkit's own events, though: passed over, its
    // Wayland source would keep the last `gtk_main` waiting for ever.
    g_idle_add_full(GDK_PRIORITY_EVENTS, endMainLoop, nullptr, nullptr);
    if (quitRequestCall)
        quitRequestCall();
}

void on_quit_request(void (*call)())
{
    quitRequestCall = call;
}

bool quit_requested()
{
    return quitRequested;
}

void run_main_loop()
{
    // A request that comes after this test has left its callback in the main context, where the loop finds it.
    if (!quit_requested())
        gtk_main();
}

int run_nested_dialog(GtkDialog *dialog)
{
    if (quit_requested())
        return GTK_RESPONSE_CANCEL;
    nestedDialogs = g_slist_prepend(nestedDialogs, dialog);
    const int response = gtk_dialog_run(dialog);
    nestedDialogs = g_slist_remove(nestedDialogs, dialog);
    return response;
}

void time_data(struct tm *out)
{
    const time_t now = time(nullptr);
    localtime_r(&now, out);
}

int isDirectory(const char *path)
{
    struct stat status;
    if (!path || stat(path, &status) != 0)
        return 2;
    if (S_ISDIR(status.st_mode))
        return 1;
    return S_ISREG(status.st_mode) ? 0 : 2;
}

bool isWayland()
{
    const char *const type = g_getenv("XDG_SESSION_TYPE");
    return type && g_ascii_strcasecmp(type, "wayland") == 0;
}

void print_output(const char *text)
{
    struct pollfd output = {STDOUT_FILENO, POLLOUT, 0};
    // A pipe that is ready takes this much at once.
    const gsize length = MIN(strlen(text), gsize(PIPE_BUF));
    if (poll(&output, 1, 0) != 1 || !(output.revents & POLLOUT))
        return;
    fflush(stdout); // what was printed before comes first
    (void)!write(STDOUT_FILENO, text, length);
}

OwnedText unescape_text(const char *escaped)
{
    return OwnedText(g_uri_unescape_string(escaped, nullptr));
}
