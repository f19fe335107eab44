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

namespace
{

// Far more than any window shows, and quickly laid out.
constexpr glong longestName = 10000;

// Written by adopt_main_thread before any other thread runs.
GThread *mainThread = nullptr;
// Set once by request_quit, from any thread.
std::atomic<bool> quitRequested = false;
// Dialogs that run a loop of their own, innermost first. Main thread.
GSList *nestedDialogs = nullptr;

struct Task {
    GSourceFunc callback;
    gpointer record;
};

gboolean runTask(gpointer data)
{
    const auto *const task = static_cast<const Task *>(data);
    task->callback(task->record);
    return G_SOURCE_REMOVE;
}

void cancelNestedDialog(gpointer dialog, gpointer)
{
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
}

gboolean endMainLoop(gpointer)
{
    g_slist_foreach(nestedDialogs, cancelNestedDialog, nullptr);
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

void run_on_main_untyped(GSourceFunc callback, gpointer record)
{
    if (g_thread_self() == mainThread) {
        callback(record);
        return;
    }
    auto *const task = g_new(Task, 1);
    *task = {callback, record};
    g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, runTask, task, g_free);
}

void request_quit()
{
    if (quitRequested.exchange(true))
        return;
    // From the main thread, too: a handler that asks for the end still finishes what it does first. Callbacks that wait
    // behind a flood of lines don't delay the end.
    g_idle_add_full(G_PRIORITY_HIGH, endMainLoop, nullptr, nullptr);
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
