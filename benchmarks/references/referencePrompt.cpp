// referencePrompt FIFO [RESOURCES]: the way from a prompt line to its dialog, written straight down: a thread reads the
// pipe to its end, a queue carries the text to a second thread, which splits it, and an idle callback shows a dialog
// with a label and two buttons; no log, no table of keywords, no registry. With RESOURCES the program's style sheet is
// on. Every line is a prompt, and its words are the question.

#include <gtk/gtk.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

const char *fifo = nullptr;
GAsyncQueue *queue = nullptr;

gboolean showDialog(gpointer line)
{
    GtkWidget *const dialog = gtk_dialog_new();
    gtk_window_set_title(GTK_WINDOW(dialog), "referencePrompt");
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    gtk_widget_set_name(dialog, "dialogbox");
    GtkWidget *const accept = gtk_dialog_add_button(GTK_DIALOG(dialog), "Yes", GTK_RESPONSE_ACCEPT);
    gtk_widget_set_name(accept, "acceptbutton");
    gtk_dialog_add_button(GTK_DIALOG(dialog), "No", GTK_RESPONSE_REJECT);
    GtkWidget *const label = gtk_label_new(static_cast<const char *>(line));
    gtk_widget_set_name(label, "dialogboxlabel");
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), label);
    gtk_window_set_default_size(GTK_WINDOW(dialog), 360, -1);
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    g_signal_connect(dialog, "response", G_CALLBACK(gtk_widget_destroy), nullptr);
    gtk_widget_show_all(dialog);
    g_free(line);
    return G_SOURCE_REMOVE;
}

void waitForWriter(int pipe)
{
    struct pollfd readable = {pipe, POLLIN, 0};
    poll(&readable, 1, -1);
}

char *readToEnd(int pipe)
{
    GString *const text = g_string_new(nullptr);
    char chunk[65536];
    for (ssize_t length; (length = read(pipe, chunk, sizeof chunk)) != 0;) {
        if (length > 0)
            g_string_append_len(text, chunk, length);
        else
            waitForWriter(pipe);
    }
    return g_string_free(text, FALSE);
}

gpointer readTexts(gpointer)
{
    constexpr int mode = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    int pipe = open(fifo, mode);
    while (pipe >= 0) {
        waitForWriter(pipe);
        g_async_queue_push(queue, readToEnd(pipe));
        const int next = open(fifo, mode);
        close(pipe);
        pipe = next;
    }
    g_error("%s can't be read", fifo);
}

gpointer dispatchTexts(gpointer)
{
    for (;;) {
        g_autofree char *text = static_cast<char *>(g_async_queue_pop(queue));
        g_auto(GStrv) lines = g_strsplit(text, "\n", -1);
        for (char **line = lines; *line; line++)
            if (**line)
                g_idle_add(showDialog, g_strdup(*line));
    }
}

void loadStyle(const char *resources)
{
    g_autofree char *path = g_build_filename(resources, "brindle-gtk.css", nullptr);
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    if (!gtk_css_provider_load_from_path(provider, path, nullptr))
        g_error("no style sheet at %s", path);
}

void showWindow()
{
    GtkWidget *const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), "referencePrompt");
    gtk_container_add(GTK_CONTAINER(window), gtk_label_new("Hello"));
    gtk_widget_show_all(window);
}

} // namespace

int main(int argc, char **argv)
{
    gtk_init(&argc, &argv);
    if (argc < 2 || argc > 3)
        g_error("usage: referencePrompt FIFO [RESOURCES]");
    fifo = argv[1];
    if (argc == 3)
        loadStyle(argv[2]);
    showWindow();
    queue = g_async_queue_new_full(g_free);
    g_thread_unref(g_thread_new("reader", readTexts, nullptr));
    g_thread_unref(g_thread_new("dispatcher", dispatchTexts, nullptr));
    gtk_main();
    return 0;
}
