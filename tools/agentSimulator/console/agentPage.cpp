// How the agent itself ends: with an exit status or by a signal. In a "normal" session the companion reacts to it.

#include "agentSimulator/console/agentPage.h"

#include "src/support.h"

#include <string>

namespace agentSimulator
{

namespace
{

constexpr char explanation[] =
    "In a \"normal\" session the companion ends with an agent that ends with 0. With another status it "
    "waits for a second and starts the agent again; a killed one it starts at once. After the "
    "third failure it ends, and so it does once it was asked to.";

struct AgentPage {
    Console *console;
    GtkWidget *status;
    GtkWidget *signal;
};

void on_exit_clicked(GtkButton *, AgentPage *page)
{
    const int status = gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(page->status));
    performCommand(page->console, "exit " + std::to_string(status));
}

void on_kill_clicked(GtkButton *, AgentPage *page)
{
    const OwnedText name(gtk_combo_box_text_get_active_text(GTK_COMBO_BOX_TEXT(page->signal)));
    performCommand(page->console, std::string("kill ") + name.get());
}

void addRow(GtkWidget *grid, int row, const char *caption, GtkWidget *control, GtkWidget *button)
{
    GtkWidget *const label = buildText(caption, nullptr);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), control);
    nameControl(control, caption);
    gtk_grid_attach(GTK_GRID(grid), label, 0, row, 1, 1);
    gtk_grid_attach(GTK_GRID(grid), control, 1, row, 1, 1);
    gtk_grid_attach(GTK_GRID(grid), button, 2, row, 1, 1);
}

} // namespace

void addAgentPage(Console *console, int status)
{
    auto *const page = new AgentPage{console, gtk_spin_button_new_with_range(0, 255, 1), gtk_combo_box_text_new()};
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(page->status), status);
    for (const char *name : {"KILL", "SEGV", "ABRT"})
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(page->signal), name);
    gtk_combo_box_set_active(GTK_COMBO_BOX(page->signal), 0);
    GtkWidget *const leave = gtk_button_new_with_label("End the agent");
    GtkWidget *const kill = gtk_button_new_with_label("Kill the agent");
    connect_signal(leave, "clicked", on_exit_clicked, page);
    connect_signal(kill, "clicked", on_kill_clicked, page);

    GtkWidget *const grid = gtk_grid_new();
    gtk_grid_set_row_spacing(GTK_GRID(grid), 12);
    gtk_grid_set_column_spacing(GTK_GRID(grid), 12);
    gtk_style_context_add_class(gtk_widget_get_style_context(grid), "form");
    g_object_set_data_full(G_OBJECT(grid), "page", page,
                           [](gpointer owned) { delete static_cast<AgentPage *>(owned); });
    GtkWidget *const text = buildText(explanation, "quiet");
    gtk_label_set_line_wrap(GTK_LABEL(text), TRUE);
    gtk_label_set_max_width_chars(GTK_LABEL(text), 70);
    gtk_grid_attach(GTK_GRID(grid), text, 0, 0, 4, 1);
    addRow(grid, 1, "Exit status", page->status, leave);
    addRow(grid, 2, "Signal", page->signal, kill);
    gtk_stack_add_titled(GTK_STACK(console->stack), grid, "Agent", "Agent");
}

} // namespace agentSimulator
