// The participants panel. The session status handler overwrites the one mailbox; a callback takes over what is in it
// and works on its own copy, and one that finds it empty only refreshes the notice.

#include "src/IdleThread/participants.h"

#include "Logger/logger.h"
#include "src/Utils/panels.h"
#include "src/Utils/pipeTransport.h"
#include "src/controls.h"
#include "src/encoder.h"
#include "src/localizationText.h"
#include "src/support.h"

namespace
{

constexpr char cursorName[] = "cursorImage";
constexpr char buttonName[] = "settingsButton";
constexpr char menuKey[] = "settingsMenu";
constexpr char revokeLabel[] = "Revoke Control"; // never translated: the entry is found by it
constexpr char sessionWithoutMenus[] = "Urs";
constexpr int rowIconPx = 12;
constexpr int rowPaddingPx = 2;

/// What the mailbox held.
struct ParticipantLine {
    OwnedText name;
    OwnedText id; ///< null: the mailbox was empty
    bool blockButton;
};

ParticipantLine takeMailbox(MainWindow *mainwindow)
{
    Expander *const mailbox = mainwindow->participants;
    const MutexLock lock(&mainwindow->mutex);
    return {OwnedText(g_steal_pointer(&mailbox->Data)), OwnedText(g_steal_pointer(&mailbox->identifier)),
            mailbox->blockButton};
}

ParticipantLine copyMailbox(MainWindow *mainwindow)
{
    const Expander *const mailbox = mainwindow->participants;
    const MutexLock lock(&mainwindow->mutex);
    return {OwnedText(g_strdup(mailbox->Data)), OwnedText(g_strdup(mailbox->identifier)), mailbox->blockButton};
}

GtkWidget *contentOf(const MainWindow *mainwindow)
{
    return mainwindow->participantsExpander->expanderContent;
}

using NameComparison = int (*)(const char *, const char *);

/// The row of an ID; `loggedOn` names the function that logs each child it passes, or is null.
GtkWidget *findRow(const MainWindow *mainwindow, const char *id, NameComparison compare, const char *loggedOn)
{
    g_autoptr(GList) children = gtk_container_get_children(GTK_CONTAINER(contentOf(mainwindow)));
    for (const GList *child = children; child; child = child->next) {
        auto *const row = static_cast<GtkWidget *>(child->data);
        if (loggedOn)
            UI_INFO_AS(loggedOn, "iterating list");
        if (row != mainwindow->participants->textBar && compare(gtk_widget_get_name(row), id) == 0)
            return row;
    }
    return nullptr;
}

// ------------------------------------------------------------------------------------------------- building a row

GtkWidget *newCursorImage(const MainWindow *mainwindow)
{
    GtkWidget *const image = resizeImages(mainwindow->participantsCursorImage, rowIconPx, 0);
    gtk_widget_set_name(image, cursorName);
    return image;
}

GtkWidget *newNameLabel(const char *name)
{
    const OwnedText shown = displayable_name(name);
    GtkWidget *const label = gtk_label_new(shown.get());
    makeOneLine(label);
    gtk_widget_set_tooltip_text(label, shown.get());
    return label;
}

using MenuHandler = void (*)(GtkWidget *, const char *);

GtkWidget *appendItem(GtkWidget *menu, const char *label, const char *name, MenuHandler handler, const char *id)
{
    GtkWidget *const item = gtk_menu_item_new_with_label(label);
    gtk_widget_set_name(item, name);
    connect_signal_owning(item, "activate", handler, OwnedText(g_strdup(id)));
    gtk_widget_show(item);
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    return item;
}

void destroyMenu(gpointer menu)
{
    gtk_menu_popdown(GTK_MENU(menu));
    gtk_widget_destroy(GTK_WIDGET(menu));
    g_object_unref(menu);
}

GtkWidget *newRowButton(const MainWindow *mainwindow, const char *participantName)
{
    GtkWidget *const button = gtk_button_new();
    gtk_widget_set_name(button, buttonName);
    gtk_button_set_image(GTK_BUTTON(button), resizeImages(mainwindow->settingsButtonImagePath, rowIconPx, 0));
    gtk_button_set_relief(GTK_BUTTON(button), GTK_RELIEF_NONE);
    g_autofree char *name = g_strdup_printf("%s: %s", getString("More"), displayable_name(participantName).get());
    atk_object_set_name(gtk_widget_get_accessible(button), name);
    return button;
}

void addRowMenu(MainWindow *mainwindow, GtkWidget *row, GtkWidget *cursor, const ParticipantLine &line)
{
    UI_INFO_AS("AddParticipants", "adding settings button");
    GtkWidget *const button = newRowButton(mainwindow, line.name.get());
    GtkWidget *const menu = GTK_WIDGET(g_object_ref_sink(gtk_menu_new()));
    appendItem(menu, getString("Swap Screen"), "swapScreen", onswapScreenClick, gtk_widget_get_name(row));
    GtkWidget *const revoke = appendItem(menu, revokeLabel, "blockAccess", onRevokeControlClick, line.id.get());
    changeSensitive(revoke, cursor, line.blockButton);
    connect_signal(button, "clicked", showPopup, menu);
    gtk_box_pack_end(GTK_BOX(row), button, FALSE, TRUE, 0);
    g_object_set_data_full(G_OBJECT(button), menuKey, menu, destroyMenu);
}

void addRow(MainWindow *mainwindow, const ParticipantLine &line)
{
    GtkWidget *const row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_name(row, line.id.get());
    GtkWidget *const cursor = newCursorImage(mainwindow);
    gtk_box_pack_start(GTK_BOX(row), cursor, FALSE, TRUE, rowPaddingPx);
    GtkWidget *const label = newNameLabel(line.name.get());
    labelPicture(cursor, label);
    gtk_box_pack_start(GTK_BOX(row), label, FALSE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(contentOf(mainwindow)), row, TRUE, TRUE, 0);
    const bool hasMenu = g_ascii_strcasecmp(mainwindow->urs, sessionWithoutMenus) != 0;
    if (hasMenu && mainwindow->isSwapScreenAllowed)
        addRowMenu(mainwindow, row, cursor, line);
    gtk_widget_show_all(row); // and not all rows: each walk over them would make many participants slow
}

void openHeader(CustomExpander *header)
{
    if (header->isVisible)
        return;
    header->isVisible = true;
    setArrow(header, true, GTK_ICON_SIZE_BUTTON);
}

// ------------------------------------------------------------------------------------------------ modifying a row

/// What a modification changes in a row.
struct RowParts {
    GtkWidget *cursor;
    GtkWidget *revoke;
};

GtkWidget *findRevokeItem(GtkWidget *menu)
{
    g_autoptr(GList) items = gtk_container_get_children(GTK_CONTAINER(menu));
    for (const GList *item = items; item; item = item->next)
        if (g_strcmp0(gtk_menu_item_get_label(GTK_MENU_ITEM(item->data)), revokeLabel) == 0)
            return static_cast<GtkWidget *>(item->data);
    return nullptr;
}

enum class Search { goesOn, found, noMenu };

Search examineChild(GtkWidget *child, RowParts *parts)
{
    if (g_strcmp0(gtk_widget_get_name(child), cursorName) == 0)
        parts->cursor = child;
    if (GTK_IS_BUTTON(child)) {
        auto *const menu = static_cast<GtkWidget *>(g_object_get_data(G_OBJECT(child), menuKey));
        if (!menu)
            return Search::noMenu;
        parts->revoke = findRevokeItem(menu);
    }
    return parts->cursor && parts->revoke ? Search::found : Search::goesOn;
}

Search findRowParts(GtkWidget *row, RowParts *parts)
{
    g_autoptr(GList) children = gtk_container_get_children(GTK_CONTAINER(row));
    Search state = Search::goesOn;
    for (const GList *child = children; child && state == Search::goesOn; child = child->next)
        state = examineChild(static_cast<GtkWidget *>(child->data), parts);
    return state;
}

void printMissingParts(const char *id)
{
    g_autofree char *text = g_strdup_printf("Could not find cursorImage or blockAccess for participant: %s\n", id);
    print_output(text);
}

void modifyRow(GtkWidget *row, const ParticipantLine &line)
{
    RowParts parts = {};
    switch (findRowParts(row, &parts)) {
    case Search::found:
        UI_INFO_AS("ModifyParticipants", "found both widgets");
        // The opposite of what adding a row does with the same word, on purpose.
        changeSensitive(parts.revoke, parts.cursor, !line.blockButton);
        break;
    case Search::noMenu:
        UI_INFO_AS("ModifyParticipants", "No menu associated with the settings button\n");
        break;
    case Search::goesOn:
        printMissingParts(line.id.get());
        break;
    }
}

void sendParticipantLine(const char *word, const char *participantId)
{
    g_autofree char *text = g_strdup_printf("%s %s", word, participantId);
    encodeButtonClickMessage(text, g_UiStatus);
}

} // namespace

gboolean AddParticipants(MainWindow *mainwindow)
{
    UI_ENTER();
    const ParticipantLine line = takeMailbox(mainwindow);
    if (line.id) {
        addRow(mainwindow, line);
        gtk_widget_show(contentOf(mainwindow));
        gtk_widget_hide(mainwindow->participants->textBar);
        openHeader(mainwindow->participantsExpander);
        mainwindow->noParticipants++;
    }
    participantsExpandCallback(mainwindow);
    return G_SOURCE_REMOVE;
}

gboolean DeleteParticipants(MainWindow *mainwindow)
{
    UI_ENTER();
    const ParticipantLine line = takeMailbox(mainwindow);
    if (line.id) {
        GtkWidget *const row = findRow(mainwindow, line.id.get(), g_ascii_strcasecmp, __func__);
        if (row) {
            UI_INFO("found container");
            mainwindow->noParticipants--;
            gtk_widget_destroy(row);
        }
        UI_INFO("clearing data");
        UI_INFO("data cleared");
    }
    participantsExpandCallback(mainwindow);
    return G_SOURCE_REMOVE;
}

gboolean ModifyParticipants(MainWindow *mainwindow)
{
    UI_ENTER();
    const ParticipantLine line = copyMailbox(mainwindow);
    if (!line.id) {
        participantsExpandCallback(mainwindow);
        return G_SOURCE_REMOVE;
    }
    GtkWidget *const row = findRow(mainwindow, line.id.get(), g_strcmp0, nullptr);
    if (!row) {
        UI_INFO("Participant box not found for ID: %s\n", line.id.get());
        return G_SOURCE_REMOVE;
    }
    UI_INFO("participant box found");
    modifyRow(row, line);
    return G_SOURCE_REMOVE;
}

void changeSensitive(GtkWidget *menuItem, GtkWidget *image, bool sensitive)
{
    UI_ENTER();
    GtkWidget *const child = gtk_bin_get_child(GTK_BIN(menuItem));
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    if (GTK_IS_LABEL(child))
        gtk_css_provider_load_from_data(provider, sensitive ? "label { color: black; }" : "label { color: gray; }", -1,
                                        nullptr);
    gtk_widget_set_sensitive(menuItem, sensitive);
    gtk_widget_set_opacity(image, sensitive ? 1.0 : 0.0);
    if (child)
        gtk_style_context_add_provider(gtk_widget_get_style_context(child), GTK_STYLE_PROVIDER(provider),
                                       GTK_STYLE_PROVIDER_PRIORITY_USER);
}

void onswapScreenClick(GtkWidget *, const char *participantId)
{
    UI_ENTER();
    sendParticipantLine("swapScreen", participantId);
}

void onRevokeControlClick(GtkWidget *, const char *participantId)
{
    UI_ENTER();
    sendParticipantLine("revokeControl", participantId);
}

const char *findParticipantName(const MainWindow *mainwindow, const char *participantId)
{
    GtkWidget *const row = findRow(mainwindow, participantId, g_ascii_strcasecmp, "show_dialog_transfer_control_demo");
    if (!row)
        return nullptr;
    g_autoptr(GList) children = gtk_container_get_children(GTK_CONTAINER(row));
    const GList *const second = g_list_nth(children, 1);
    return second && GTK_IS_LABEL(second->data) ? gtk_label_get_text(GTK_LABEL(second->data)) : nullptr;
}
