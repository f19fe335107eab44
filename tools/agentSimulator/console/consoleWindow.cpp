// The window: switches at the top, a page for each topic beside its list of topics, the conversation, and a line for
// everything that no form knows.

#include "agentSimulator/console/consoleWindow.h"

#include "agentSimulator/command.h"
#include "agentSimulator/console/agentPage.h"
#include "agentSimulator/console/consoleSession.h"
#include "agentSimulator/console/conversationView.h"
#include "agentSimulator/console/formPages.h"
#include "agentSimulator/console/scriptPage.h"
#include "agentSimulator/lineForm.h"
#include "agentSimulator/options.h"
#include "agentSimulator/wireText.h"
#include "src/support.h"

#include <memory>
#include <utility>

namespace agentSimulator
{

namespace
{

constexpr std::chrono::milliseconds pingPeriod{5000};
constexpr int widthPx = 860, heightPx = 740, topicHeightPx = 350;

// Colours are the theme's own.
constexpr char styleSheet[] = ".quiet { opacity: 0.75; }"
                              ".form { padding: 10px 14px; }"
                              ".heading { font-weight: bold; }"
                              ".line { font-family: monospace; font-size: 90%; opacity: 0.75; }"
                              ".bar { padding: 8px 12px; }";

std::chrono::milliseconds now()
{
    return std::chrono::milliseconds(g_get_monotonic_time() / 1000);
}

gboolean on_delete(GtkWidget *, GdkEvent *, Console *console)
{
    console->session->ending().request(0, "the console was closed");
    return TRUE; // the end of the session takes the window along
}

void on_ping_switched(GtkSwitch *button, GParamSpec *, Console *console)
{
    if (console->isSyncing)
        return;
    const bool isOn = gtk_switch_get_active(button);
    if (isOn)
        console->session->background().startPings(pingPeriod);
    else
        console->session->background().stopPings();
    noteCommand(console, isOn ? "ping on" : "ping off");
}

void on_answer_switched(GtkSwitch *button, GParamSpec *, Console *console)
{
    if (console->isSyncing)
        return;
    const bool isOn = gtk_switch_get_active(button);
    console->session->background().setAnswering(isOn);
    noteCommand(console, isOn ? "answer on" : "answer off");
}

/// Only a change of the session moves a switch: setting one, even to what it is, undoes the click that it is about to
/// follow.
void syncSwitch(GtkWidget *button, bool &lastState, bool state)
{
    if (std::exchange(lastState, state) != state)
        gtk_switch_set_active(GTK_SWITCH(button), state);
}

void syncSwitches(Console *console)
{
    console->isSyncing = true;
    syncSwitch(console->pingSwitch, console->wasPinging, console->session->background().isPinging());
    syncSwitch(console->answerSwitch, console->wasAnswering, console->session->background().isAnswering());
    console->isSyncing = false;
}

GtkWidget *addSwitch(GtkWidget *bar, const char *caption, const char *tooltip)
{
    GtkWidget *const button = gtk_switch_new();
    GtkWidget *const label = buildText(caption, nullptr);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), button);
    nameControl(button, caption);
    gtk_widget_set_tooltip_text(button, tooltip);
    gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
    gtk_box_pack_start(GTK_BOX(bar), button, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(bar), label, FALSE, FALSE, 0);
    return button;
}

GtkWidget *buildSwitches(Console *console, const Options &options)
{
    GtkWidget *const bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    gtk_style_context_add_class(gtk_widget_get_style_context(bar), "bar");
    console->pingSwitch = addSwitch(bar, "Signs of life", "Sends \"PING UI\" every five seconds");
    console->answerSwitch =
        addSwitch(bar, "Answer by itself", "Confirms pausing and resuming, and ends when the customer leaves");
    connect_signal(console->pingSwitch, "notify::active", on_ping_switched, console);
    connect_signal(console->answerSwitch, "notify::active", on_answer_switched, console);
    const OwnedText pipes(g_filename_display_name(options.pipeDirectory.c_str()));
    GtkWidget *const place = buildText(pipes.get(), "quiet");
    gtk_label_set_ellipsize(GTK_LABEL(place), PANGO_ELLIPSIZE_START);
    gtk_label_set_xalign(GTK_LABEL(place), 1);
    gtk_box_pack_end(GTK_BOX(bar), place, TRUE, TRUE, 0);
    return bar;
}

GtkWidget *buildTopics(Console *console, const Options &options)
{
    console->stack = gtk_stack_new();
    addFormPages(console);
    addScriptPage(console);
    addAgentPage(console, options.exitStatus.value_or(0));
    GtkWidget *const sidebar = gtk_stack_sidebar_new();
    gtk_stack_sidebar_set_stack(GTK_STACK_SIDEBAR(sidebar), GTK_STACK(console->stack));
    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_box_pack_start(GTK_BOX(box), sidebar, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), console->stack, TRUE, TRUE, 0);
    return box;
}

/// What was typed as the script has it: a command, or a line to be sent.
std::string typedCommand(const char *text)
{
    return startsWithCommand(text) ? text : scriptCommandFor(std::string(text) + "\n");
}

void on_typed(GtkEntry *entry, Console *console)
{
    const std::string text = gtk_entry_get_text(entry);
    if (trimmed(text).empty())
        return;
    performCommand(console, typedCommand(text.c_str()));
    gtk_entry_set_text(entry, "");
}

void on_type_clicked(GtkButton *, GtkEntry *entry)
{
    gtk_widget_activate(GTK_WIDGET(entry));
}

GtkWidget *buildTyping(Console *console)
{
    GtkWidget *const bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
    GtkWidget *const entry = gtk_entry_new();
    GtkWidget *const button = gtk_button_new_with_mnemonic("S_end");
    GtkWidget *const label = buildText("Command or line", nullptr);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), entry);
    gtk_widget_set_tooltip_text(entry, "A script command, or a line to be sent as it stands");
    nameControl(entry, "Command");
    nameControl(button, "Send the command");
    connect_signal(entry, "activate", on_typed, console);
    connect_signal(button, "clicked", on_type_clicked, GTK_ENTRY(entry));
    gtk_box_pack_start(GTK_BOX(bar), label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(bar), entry, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(bar), button, FALSE, FALSE, 0);
    return bar;
}

GtkWidget *buildLowerHalf(Console *console)
{
    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
    gtk_style_context_add_class(gtk_widget_get_style_context(box), "bar");
    gtk_box_pack_start(GTK_BOX(box), buildConversation(console), TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(box), buildTyping(console), FALSE, FALSE, 0);
    return box;
}

void loadStyle()
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, styleSheet, -1, nullptr);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

/// A line of the record on its way to the main thread.
struct Delivery {
    Console *console;
    RecordEntry entry;
};

gboolean deliver(Delivery *record)
{
    const std::unique_ptr<Delivery> delivery(record);
    Console *const console = delivery->console;
    showEntry(console, delivery->entry);
    syncSwitches(console);
    if (delivery->entry.mark == '<' && console->recording.isRunning()) {
        for (const std::string &line : splitLines(delivery->entry.content))
            extendScript(console, console->recording.addReceived(line, now()));
    }
    return G_SOURCE_REMOVE;
}

} // namespace

void performCommand(Console *console, const std::string &command)
{
    console->session->perform(command);
    noteCommand(console, command);
}

void noteCommand(Console *console, const std::string &command)
{
    if (console->recording.isRunning())
        extendScript(console, console->recording.addCommand(command, now()));
}

void nameControl(GtkWidget *control, const std::string &name)
{
    atk_object_set_name(gtk_widget_get_accessible(control), name.c_str());
}

GtkWidget *buildText(const char *text, const char *styleClass)
{
    GtkWidget *const label = gtk_label_new(text);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    if (styleClass)
        gtk_style_context_add_class(gtk_widget_get_style_context(label), styleClass);
    return label;
}

void buildConsoleWindow(Console *console, const Options &options)
{
    loadStyle();
    console->window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(console->window), "Technician console");
    gtk_window_set_default_size(GTK_WINDOW(console->window), widthPx, heightPx);
    connect_signal(console->window, "delete-event", on_delete, console);

    GtkWidget *const halves = gtk_paned_new(GTK_ORIENTATION_VERTICAL);
    gtk_paned_pack1(GTK_PANED(halves), buildTopics(console, options), TRUE, FALSE);
    gtk_paned_pack2(GTK_PANED(halves), buildLowerHalf(console), TRUE, FALSE);
    gtk_paned_set_position(GTK_PANED(halves), topicHeightPx);
    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_pack_start(GTK_BOX(box), buildSwitches(console, options), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), halves, TRUE, TRUE, 0);
    gtk_container_add(GTK_CONTAINER(console->window), box);
    gtk_widget_show_all(console->window);
}

void handOverEntry(Console *console, const RecordEntry &entry)
{
    schedule_on_main(deliver, new Delivery{console, entry});
}

} // namespace agentSimulator
