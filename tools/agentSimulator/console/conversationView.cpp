// The conversation as a list: when, who, the line, and what it means. It follows its end, unless the person has
// scrolled back, and forgets its beginning at some length.

#include "agentSimulator/console/conversationView.h"

#include "agentSimulator/lineTable.h"
#include "agentSimulator/wireText.h"
#include "src/support.h"

#include <array>
#include <cstdio>

namespace agentSimulator
{

namespace
{

enum Column { timeColumn, whoColumn, lineColumn, meaningColumn, weightColumn, pingColumn, receivedColumn, columnCount };

constexpr int maxRows = 5000;
constexpr size_t maxShownBytes = 600;
constexpr size_t maxReadBytes = 4000; // of a line whose meaning is wanted

struct Row {
    const char *who;
    std::string line;
    std::string meaning; ///< displayable
    bool isPing = false;
};

std::string formatTime(std::int64_t elapsedMs)
{
    char text[40];
    const long long seconds = elapsedMs / 1000;
    snprintf(text, sizeof text, "%lld:%02lld.%03lld", seconds / 60, seconds % 60,
             static_cast<long long>(elapsedMs % 1000));
    return text;
}

/// Any bytes as one line that a list can lay out in no time.
std::string shownText(std::string_view bytes)
{
    std::string text = escapeForRecord(bytes.substr(0, maxShownBytes));
    return bytes.size() > maxShownBytes ? text + " …" : text;
}

std::string_view withoutLastNewline(std::string_view text)
{
    return text.substr(0, text.size() - (text.ends_with('\n') ? 1 : 0));
}

void addRow(Console *console, std::int64_t elapsedMs, const Row &row)
{
    const bool isReceived = row.who == std::string_view("companion");
    GtkTreeIter place;
    gtk_list_store_insert_with_values(
        console->rows, &place, -1, timeColumn, formatTime(elapsedMs).c_str(), whoColumn, row.who, lineColumn,
        shownText(row.line).c_str(), meaningColumn, row.meaning.c_str(), weightColumn,
        isReceived ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL, pingColumn, row.isPing, receivedColumn, isReceived, -1);
    GtkTreeIter first;
    GtkTreeModel *const model = GTK_TREE_MODEL(console->rows);
    if (gtk_tree_model_iter_n_children(model, nullptr) > maxRows && gtk_tree_model_get_iter_first(model, &first))
        gtk_list_store_remove(console->rows, &first);
}

gboolean isRowShown(GtkTreeModel *model, GtkTreeIter *row, gpointer data)
{
    const auto *const console = static_cast<const Console *>(data);
    gboolean isPing = FALSE, isReceived = FALSE;
    gtk_tree_model_get(model, row, pingColumn, &isPing, receivedColumn, &isReceived, -1);
    return (console->showsPings || !isPing) && (!console->showsOnlyCompanion || isReceived);
}

void on_pings_toggled(GtkToggleButton *button, Console *console)
{
    console->showsPings = gtk_toggle_button_get_active(button);
    gtk_tree_model_filter_refilter(GTK_TREE_MODEL_FILTER(console->shownRows));
}

void on_companion_toggled(GtkToggleButton *button, Console *console)
{
    console->showsOnlyCompanion = gtk_toggle_button_get_active(button);
    gtk_tree_model_filter_refilter(GTK_TREE_MODEL_FILTER(console->shownRows));
}

void on_clear_clicked(GtkButton *, Console *console)
{
    gtk_list_store_clear(console->rows);
}

/// The list has grown: it stays at its end when it was there.
void on_height_changed(GtkAdjustment *adjustment, GParamSpec *, Console *console)
{
    const double end = gtk_adjustment_get_upper(adjustment) - gtk_adjustment_get_page_size(adjustment);
    const bool follows = !g_object_get_data(G_OBJECT(console->conversation), "scrolled-back");
    if (follows)
        gtk_adjustment_set_value(adjustment, end);
}

void on_scrolled(GtkAdjustment *adjustment, Console *console)
{
    const double end = gtk_adjustment_get_upper(adjustment) - gtk_adjustment_get_page_size(adjustment);
    const bool isBack = gtk_adjustment_get_value(adjustment) < end - 2 * gtk_adjustment_get_step_increment(adjustment);
    g_object_set_data(G_OBJECT(console->conversation), "scrolled-back", GINT_TO_POINTER(isBack));
}

struct ColumnLook {
    const char *title;
    Column column;
    int widthPx;
    bool expands;
};

constexpr std::array<ColumnLook, 4> columnLooks = {{
    {"Time", timeColumn, 80, false},
    {"From", whoColumn, 90, false},
    {"Line", lineColumn, 330, true},
    {"Meaning", meaningColumn, 310, true},
}};

void addColumn(GtkTreeView *list, const ColumnLook &look)
{
    GtkCellRenderer *const renderer = gtk_cell_renderer_text_new();
    g_object_set(renderer, "ellipsize", look.expands ? PANGO_ELLIPSIZE_END : PANGO_ELLIPSIZE_NONE, "family",
                 look.column == lineColumn || look.column == timeColumn ? "monospace" : "sans", nullptr);
    GtkTreeViewColumn *const column = gtk_tree_view_column_new_with_attributes(
        look.title, renderer, "text", look.column, "weight", weightColumn, nullptr);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(column, look.widthPx);
    gtk_tree_view_column_set_expand(column, look.expands);
    gtk_tree_view_column_set_resizable(column, TRUE);
    gtk_tree_view_append_column(list, column);
}

GtkWidget *buildList(Console *console)
{
    console->rows = gtk_list_store_new(columnCount, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING,
                                       G_TYPE_INT, G_TYPE_BOOLEAN, G_TYPE_BOOLEAN);
    console->shownRows = gtk_tree_model_filter_new(GTK_TREE_MODEL(console->rows), nullptr);
    gtk_tree_model_filter_set_visible_func(GTK_TREE_MODEL_FILTER(console->shownRows), isRowShown, console, nullptr);
    console->conversation = gtk_tree_view_new_with_model(console->shownRows);
    for (const ColumnLook &look : columnLooks)
        addColumn(GTK_TREE_VIEW(console->conversation), look);
    gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(console->conversation), TRUE);
    gtk_tree_view_set_search_column(GTK_TREE_VIEW(console->conversation), lineColumn);
    nameControl(console->conversation, "Conversation");
    return console->conversation;
}

GtkWidget *buildToggle(Console *console, const char *label, void (*handler)(GtkToggleButton *, Console *))
{
    GtkWidget *const toggle = gtk_check_button_new_with_mnemonic(label);
    connect_signal(toggle, "toggled", handler, console);
    return toggle;
}

GtkWidget *buildRecordBar(Console *console)
{
    GtkWidget *const bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    gtk_box_pack_start(GTK_BOX(bar), buildText("Conversation", "heading"), FALSE, FALSE, 0);
    GtkWidget *const clear = gtk_button_new_with_mnemonic("C_lear");
    connect_signal(clear, "clicked", on_clear_clicked, console);
    gtk_box_pack_end(GTK_BOX(bar), clear, FALSE, FALSE, 0);
    gtk_box_pack_end(GTK_BOX(bar), buildToggle(console, "Signs of life _too", on_pings_toggled), FALSE, FALSE, 0);
    gtk_box_pack_end(GTK_BOX(bar), buildToggle(console, "_Only the companion", on_companion_toggled), FALSE, FALSE, 0);
    return bar;
}

} // namespace

GtkWidget *buildConversation(Console *console)
{
    GtkWidget *const scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroller), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scroller), buildList(console));
    GtkAdjustment *const height = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller));
    connect_signal(height, "notify::upper", on_height_changed, console);
    connect_signal(height, "value-changed", on_scrolled, console);

    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    gtk_box_pack_start(GTK_BOX(box), buildRecordBar(console), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), scroller, TRUE, TRUE, 0);
    return box;
}

void showEntry(Console *console, const RecordEntry &entry)
{
    const std::string_view content = entry.content;
    if (entry.mark == '<') {
        for (const std::string &line : splitLines(content))
            addRow(console, entry.elapsedMs,
                   {"companion", line, describeReceived(std::string_view(line).substr(0, maxReadBytes))});
    } else if (entry.mark == '>') {
        addRow(console, entry.elapsedMs,
               {"agent", std::string(withoutLastNewline(content)), describeSent(content), content == "PING UI\n"});
    } else if (entry.mark == '!') {
        addRow(console, entry.elapsedMs, {"console", std::string(content), "This went wrong"});
    } else if (!content.starts_with("argv[")) {
        addRow(console, entry.elapsedMs, {"console", std::string(content), ""});
    }
}

} // namespace agentSimulator
