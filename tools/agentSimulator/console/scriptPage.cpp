// The script: written by hand, opened, or recorded from what the technician does; played by a thread of the session.
// Files are read and written in the background.

#include "agentSimulator/console/scriptPage.h"

#include "agentSimulator/console/consoleSession.h"
#include "agentSimulator/script.h"
#include "src/support.h"

namespace agentSimulator
{

namespace
{

void showState(Console *console, const std::string &text)
{
    gtk_label_set_text(GTK_LABEL(console->scriptState), text.c_str());
}

void showPlaying(Console *console, bool plays)
{
    gtk_widget_set_sensitive(console->playButton, !plays);
    gtk_widget_set_sensitive(console->stopButton, plays);
}

std::string scriptText(Console *console)
{
    GtkTextIter start, end;
    gtk_text_buffer_get_bounds(console->script, &start, &end);
    const OwnedText text(gtk_text_buffer_get_text(console->script, &start, &end, FALSE));
    return text.get();
}

void on_play_clicked(GtkButton *, Console *console)
{
    playScript(console);
}

void on_stop_clicked(GtkButton *, Console *console)
{
    console->session->stopReplay();
}

void on_record_toggled(GtkToggleButton *button, Console *console)
{
    if (!gtk_toggle_button_get_active(button)) {
        console->recording.stop();
        return showState(console, "Recorded");
    }
    console->recording.start(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(console->waitsForAnswers)));
    showState(console, "Recording: what you do is added to the script");
}

/// A file that is being read or written; the path is the file's.
struct Transfer {
    Console *console;
    OwnedText path;
};

void on_loaded(GObject *file, GAsyncResult *result, gpointer data)
{
    const std::unique_ptr<Transfer> transfer(static_cast<Transfer *>(data));
    g_autofree char *content = nullptr;
    gsize length = 0;
    g_autoptr(GError) error = nullptr;
    if (!g_file_load_contents_finish(G_FILE(file), result, &content, &length, nullptr, &error))
        return showState(transfer->console, error->message);
    setScript(transfer->console, std::string(content, length), transfer->path.get());
    showState(transfer->console, std::string("Opened ") + transfer->path.get());
}

void on_saved(GObject *file, GAsyncResult *result, gpointer data)
{
    const std::unique_ptr<Transfer> transfer(static_cast<Transfer *>(data));
    g_autoptr(GError) error = nullptr;
    if (!g_file_replace_contents_finish(G_FILE(file), result, nullptr, &error))
        return showState(transfer->console, error->message);
    showState(transfer->console, std::string("Saved ") + transfer->path.get());
}

void loadFrom(Console *console, GFile *file)
{
    auto *const transfer = new Transfer{console, OwnedText(g_file_get_path(file))};
    g_file_load_contents_async(file, nullptr, on_loaded, transfer);
}

void saveTo(Console *console, GFile *file)
{
    const std::string text = scriptText(console);
    g_autoptr(GBytes) bytes = g_bytes_new(text.data(), text.size());
    auto *const transfer = new Transfer{console, OwnedText(g_file_get_path(file))};
    g_file_replace_contents_bytes_async(file, bytes, nullptr, FALSE, G_FILE_CREATE_NONE, nullptr, on_saved, transfer);
}

void on_open_response(GtkDialog *chooser, int response, Console *console)
{
    g_autoptr(GFile) file = gtk_file_chooser_get_file(GTK_FILE_CHOOSER(chooser));
    if (response == GTK_RESPONSE_ACCEPT && file)
        loadFrom(console, file);
    gtk_widget_destroy(GTK_WIDGET(chooser));
}

void on_save_response(GtkDialog *chooser, int response, Console *console)
{
    g_autoptr(GFile) file = gtk_file_chooser_get_file(GTK_FILE_CHOOSER(chooser));
    if (response == GTK_RESPONSE_ACCEPT && file)
        saveTo(console, file);
    gtk_widget_destroy(GTK_WIDGET(chooser));
}

GtkWidget *buildChooser(Console *console, const char *title, GtkFileChooserAction action, const char *accept)
{
    GtkWidget *const chooser = gtk_file_chooser_dialog_new(title, GTK_WINDOW(console->window), action, "_Cancel",
                                                           GTK_RESPONSE_CANCEL, accept, GTK_RESPONSE_ACCEPT, nullptr);
    gtk_window_set_modal(GTK_WINDOW(chooser), TRUE);
    gtk_file_chooser_set_local_only(GTK_FILE_CHOOSER(chooser), TRUE);
    if (!console->scriptFolder.empty())
        gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(chooser), console->scriptFolder.c_str());
    return chooser;
}

void on_open_clicked(GtkButton *, Console *console)
{
    GtkWidget *const chooser = buildChooser(console, "Open a script", GTK_FILE_CHOOSER_ACTION_OPEN, "_Open");
    connect_signal(chooser, "response", on_open_response, console);
    gtk_widget_show(chooser);
}

void on_save_clicked(GtkButton *, Console *console)
{
    GtkWidget *const chooser = buildChooser(console, "Save the script", GTK_FILE_CHOOSER_ACTION_SAVE, "_Save");
    gtk_file_chooser_set_do_overwrite_confirmation(GTK_FILE_CHOOSER(chooser), TRUE);
    gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(chooser), "session.script");
    connect_signal(chooser, "response", on_save_response, console);
    gtk_widget_show(chooser);
}

GtkWidget *addButton(GtkWidget *bar, GtkWidget *button)
{
    gtk_box_pack_start(GTK_BOX(bar), button, FALSE, FALSE, 0);
    return button;
}

GtkWidget *buildScriptBar(Console *console)
{
    GtkWidget *const bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    console->recordButton = addButton(bar, gtk_toggle_button_new_with_mnemonic("_Record"));
    console->playButton = addButton(bar, gtk_button_new_with_mnemonic("_Play"));
    console->stopButton = addButton(bar, gtk_button_new_with_mnemonic("Sto_p"));
    console->waitsForAnswers = addButton(bar, gtk_check_button_new_with_mnemonic("_Wait for the customer"));
    gtk_widget_set_tooltip_text(console->waitsForAnswers, "A recorded script waits for each line of the companion");
    GtkWidget *const save = gtk_button_new_with_mnemonic("_Save…");
    GtkWidget *const open = gtk_button_new_with_mnemonic("_Open…");
    gtk_box_pack_end(GTK_BOX(bar), save, FALSE, FALSE, 0);
    gtk_box_pack_end(GTK_BOX(bar), open, FALSE, FALSE, 0);
    connect_signal(console->recordButton, "toggled", on_record_toggled, console);
    connect_signal(console->playButton, "clicked", on_play_clicked, console);
    connect_signal(console->stopButton, "clicked", on_stop_clicked, console);
    connect_signal(save, "clicked", on_save_clicked, console);
    connect_signal(open, "clicked", on_open_clicked, console);
    return bar;
}

GtkWidget *buildEditor(Console *console)
{
    GtkWidget *const view = gtk_text_view_new();
    gtk_text_view_set_monospace(GTK_TEXT_VIEW(view), TRUE);
    gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(view), FALSE); // Tab leads on to the next control
    nameControl(view, "Script");
    console->script = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    GtkWidget *const scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroller), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scroller), view);
    return scroller;
}

} // namespace

void addScriptPage(Console *console)
{
    GtkWidget *const page = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
    gtk_style_context_add_class(gtk_widget_get_style_context(page), "form");
    console->scriptState = buildText("Write, open or record a script", "quiet");
    gtk_label_set_ellipsize(GTK_LABEL(console->scriptState), PANGO_ELLIPSIZE_END);
    gtk_box_pack_start(GTK_BOX(page), buildScriptBar(console), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(page), buildEditor(console), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(page), console->scriptState, FALSE, FALSE, 0);
    gtk_stack_add_titled(GTK_STACK(console->stack), page, "Script", "Script");
    showPlaying(console, false);
}

void setScript(Console *console, const std::string &text, const std::string &path)
{
    const OwnedText shown(g_utf8_make_valid(text.c_str(), -1));
    gtk_text_buffer_set_text(console->script, shown.get(), -1);
    const OwnedText folder(g_path_get_dirname(path.c_str()));
    console->scriptFolder = folder.get();
}

void playScript(Console *console)
{
    ParsedScript script = parseScript(scriptText(console));
    if (!script.error.empty())
        return showState(console, script.error);
    if (script.commands.empty())
        return showState(console, "The script is empty");
    if (!console->session->startReplay(std::move(script.commands), console->scriptFolder))
        return;
    showPlaying(console, true);
    showState(console, "Playing");
}

void extendScript(Console *console, const std::string &lines)
{
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(console->script, &end);
    gtk_text_buffer_insert(console->script, &end, lines.c_str(), -1);
}

void noteReplayEnd(Console *console, int failures)
{
    showPlaying(console, false);
    showState(console, failures == 0 ? "Played" : "Played; missed: " + std::to_string(failures));
}

} // namespace agentSimulator
