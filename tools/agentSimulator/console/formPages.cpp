// A page for each topic of the table of lines. A row of the table becomes a title, what the customer will see, its
// fields, the line as it will go out, and the button that sends it.

#include "agentSimulator/console/formPages.h"

#include "agentSimulator/lineForm.h"
#include "agentSimulator/lineTable.h"
#include "agentSimulator/wireText.h"
#include "src/support.h"

#include <array>
#include <memory>
#include <vector>

namespace agentSimulator
{

namespace
{

/// One row of the table with the controls that fill it in; belongs to its box.
struct Form {
    Console *console;
    const InboundLine *line;
    std::vector<GtkWidget *> entries; ///< one for each field
    GtkWidget *preview;               ///< null without fields
};

struct Page {
    Topic topic;
    const char *name;
};

constexpr std::array<Page, 7> pages = {{
    {Topic::session, "Session"},
    {Topic::people, "Participants"},
    {Topic::questions, "Questions"},
    {Topic::files, "Files and calls"},
    {Topic::swap, "Swap of screens"},
    {Topic::chat, "Chat and AR"},
    {Topic::permissions, "Permissions"},
}};

std::string textOf(const Form *form)
{
    std::vector<std::string> values;
    values.reserve(form->entries.size());
    for (GtkWidget *const entry : form->entries)
        values.emplace_back(gtk_entry_get_text(GTK_ENTRY(entry)));
    return encodeForm(*form->line, values);
}

void on_send_clicked(GtkButton *, Form *form)
{
    performCommand(form->console, scriptCommandFor(textOf(form)));
    if (form->line->shape == Shape::chat) // the next message is another one
        gtk_entry_set_text(GTK_ENTRY(form->entries.back()), "");
}

void on_entry_activate(GtkEntry *, Form *form)
{
    on_send_clicked(nullptr, form);
}

void showPreview(Form *form)
{
    const std::string text = escapeForRecord(textOf(form));
    gtk_label_set_text(GTK_LABEL(form->preview), text.c_str());
}

void on_entry_changed(GtkEditable *, Form *form)
{
    showPreview(form);
}

/// What to type into, in a box with the values worth a click when there are any.
GtkWidget *buildInput(const Field &field)
{
    if (!*field.choices)
        return gtk_entry_new();
    GtkWidget *const box = gtk_combo_box_text_new_with_entry();
    const OwnedTexts choices(g_strsplit(field.choices, "|", -1));
    for (char **choice = choices.get(); *choice; choice++)
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(box), *choice);
    return box;
}

GtkWidget *buildField(Form *form, const Field &field)
{
    GtkWidget *const input = buildInput(field);
    GtkWidget *const entry = GTK_IS_ENTRY(input) ? input : gtk_bin_get_child(GTK_BIN(input));
    gtk_entry_set_text(GTK_ENTRY(entry), field.initial);
    for (GtkWidget *const control : {input, entry})
        nameControl(control, std::string(form->line->title) + ": " + field.name);
    connect_signal(entry, "changed", on_entry_changed, form);
    connect_signal(entry, "activate", on_entry_activate, form);
    form->entries.push_back(entry);

    const bool isText = field.encoding == Encoding::base64 || field.encoding == Encoding::percentList ||
                        std::string_view(field.name) == "message" || std::string_view(field.name) == "URL";
    gtk_entry_set_width_chars(GTK_ENTRY(entry), isText ? 30 : 12);
    GtkWidget *const column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
    gtk_box_pack_start(GTK_BOX(column), buildText(field.name, "quiet"), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), input, FALSE, FALSE, 0);
    gtk_widget_set_hexpand(column, isText);
    return column;
}

GtkWidget *buildFields(Form *form)
{
    GtkWidget *const fields = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
    for (size_t i = 0; i < form->line->fieldCount(); i++) {
        GtkWidget *const field = buildField(form, form->line->fields[i]);
        gtk_box_pack_start(GTK_BOX(fields), field, gtk_widget_get_hexpand(field), TRUE, 0);
    }
    return fields;
}

GtkWidget *buildHead(Form *form)
{
    GtkWidget *const head = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    GtkWidget *const title = buildText(form->line->title, "heading");
    gtk_label_set_width_chars(GTK_LABEL(title), 20);
    GtkWidget *const meaning = buildText(form->line->meaning, "quiet");
    gtk_label_set_line_wrap(GTK_LABEL(meaning), TRUE);
    GtkWidget *const button = gtk_button_new_with_label("Send");
    nameControl(button, std::string("Send: ") + form->line->title);
    const std::string line = std::string(form->line->keyword) + (*form->line->word ? " " : "") + form->line->word;
    gtk_widget_set_tooltip_text(button, line.c_str());
    gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
    connect_signal(button, "clicked", on_send_clicked, form);
    gtk_box_pack_start(GTK_BOX(head), title, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(head), meaning, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(head), button, FALSE, FALSE, 0);
    return head;
}

GtkWidget *buildForm(Console *console, const InboundLine &line)
{
    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    gtk_style_context_add_class(gtk_widget_get_style_context(box), "form");
    auto *const form = new Form{console, &line, {}, nullptr};
    g_object_set_data_full(G_OBJECT(box), "form", form, [](gpointer owned) { delete static_cast<Form *>(owned); });
    gtk_box_pack_start(GTK_BOX(box), buildHead(form), FALSE, FALSE, 0);
    if (line.fieldCount() == 0)
        return box;
    gtk_box_pack_start(GTK_BOX(box), buildFields(form), FALSE, FALSE, 0);
    form->preview = buildText("", "line");
    gtk_label_set_ellipsize(GTK_LABEL(form->preview), PANGO_ELLIPSIZE_END);
    gtk_label_set_selectable(GTK_LABEL(form->preview), TRUE);
    gtk_widget_set_can_focus(form->preview, FALSE);
    gtk_box_pack_start(GTK_BOX(box), form->preview, FALSE, FALSE, 0);
    showPreview(form);
    return box;
}

GtkWidget *buildPage(Console *console, const Page &page)
{
    GtkWidget *const list = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (const InboundLine &line : inboundLines()) {
        if (line.topic != page.topic)
            continue;
        gtk_box_pack_start(GTK_BOX(list), buildForm(console, line), FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(list), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL), FALSE, FALSE, 0);
    }
    GtkWidget *const scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_container_add(GTK_CONTAINER(scroller), list);
    // Whoever goes through the page with the keyboard sees where he is.
    gtk_container_set_focus_vadjustment(GTK_CONTAINER(list),
                                        gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller)));
    return scroller;
}

} // namespace

void addFormPages(Console *console)
{
    for (const Page &page : pages)
        gtk_stack_add_titled(GTK_STACK(console->stack), buildPage(console, page), page.name, page.name);
}

} // namespace agentSimulator
