// The panels. Each has two levels: its toolbar button shows or hides the whole panel, a click on its header shows or
// hides the content below. The states of both levels live in `Expander` and `CustomExpander`.

#include "src/Utils/panels.h"

#include "Logger/logger.h"

namespace
{

constexpr int shown = 1;
constexpr int hidden = 2;
constexpr int arrowMarginPx = 4;
constexpr int severalTechnicians = 2;
constexpr int oneLineChars = 20;

void showNoticeWhileAlone(MainWindow *mainwindow, const char *function)
{
    UI_INFO_AS(function, "no of participants :%d ", mainwindow->noParticipants);
    const bool alone = mainwindow->noParticipants < 1;
    UI_INFO_AS(function, alone ? "no participants present" : "participants present");
    gtk_widget_set_visible(mainwindow->participants->textBar, alone);
}

void showSendFileOrNotice(MainWindow *mainwindow)
{
    const bool several = mainwindow->noParticipants >= severalTechnicians;
    gtk_widget_set_visible(mainwindow->sendFile, !several);
    gtk_widget_set_visible(mainwindow->fileTransfer->textBar, several);
}

GtkWidget *newHeaderBox(const char *title, CustomExpander *header)
{
    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    header->arrowImage = keep_widget(gtk_image_new_from_icon_name("pan-end-symbolic", GTK_ICON_SIZE_INVALID));
    gtk_widget_set_name(header->arrowImage, "expanderButton");
    set_widget_margins(header->arrowImage, arrowMarginPx, -1, -1, -1);
    gtk_box_pack_start(GTK_BOX(box), header->arrowImage, FALSE, FALSE, 0);
    GtkWidget *const label = gtk_label_new_with_mnemonic(title);
    labelPicture(header->arrowImage, label);
    gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
    return box;
}

GtkWidget *newHeaderEventBox(const PanelParts &parts, MainWindow *mainwindow)
{
    GtkWidget *const eventBox = gtk_event_box_new();
    gtk_event_box_set_above_child(GTK_EVENT_BOX(eventBox), TRUE);
    gtk_container_add(GTK_CONTAINER(eventBox), newHeaderBox(parts.title, parts.header));
    auto *const data = g_new(ExpanderCallbackData, 1);
    *data = {parts.header, mainwindow, parts.callback};
    connect_signal(eventBox, "button-release-event", ExpanderCallback, data);
    g_object_set_data_full(G_OBJECT(eventBox), "expander-callback-data", data, g_free);
    return eventBox;
}

void addRightButton(GtkWidget *row, const char *imagePath, CustomExpander *header)
{
    header->Rightimage = keep_widget(newImageFromFile(imagePath));
    header->rightButton = keep_widget(gtk_button_new());
    gtk_button_set_image(GTK_BUTTON(header->rightButton), header->Rightimage);
    gtk_button_set_relief(GTK_BUTTON(header->rightButton), GTK_RELIEF_NONE);
    gtk_box_pack_end(GTK_BOX(row), header->rightButton, FALSE, FALSE, 0);
}

/// Shows or hides a whole panel; true when it is shown now.
bool togglePanel(Expander *panel)
{
    const bool opens = panel->buttonState == hidden;
    panel->buttonState = opens ? shown : hidden;
    if (opens)
        gtk_widget_show_all(panel->contentArea);
    else
        gtk_widget_hide(panel->contentArea);
    return opens;
}

} // namespace

GtkWidget *createExapnder(const PanelParts &parts, MainWindow *mainwindow)
{
    UI_ENTER();
    parts.header->expanderContent = keep_widget(parts.content);
    parts.header->isVisible = false;

    GtkWidget *const row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_name(row, "expander");
    gtk_box_pack_start(GTK_BOX(row), newHeaderEventBox(parts, mainwindow), FALSE, FALSE, 0);
    if (parts.rightImage)
        addRightButton(row, parts.rightImage, parts.header);

    GtkWidget *const panel = keep_widget(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0));
    gtk_box_pack_start(GTK_BOX(panel), row, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(panel), parts.content, FALSE, FALSE, 0);
    return panel;
}

void setArrow(CustomExpander *header, bool open, GtkIconSize size)
{
    gtk_image_set_from_icon_name(GTK_IMAGE(header->arrowImage), open ? "pan-down-symbolic" : "pan-end-symbolic", size);
}

void makeOneLine(GtkWidget *label)
{
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    // It asks for little, so that the window stays as wide as it is, and takes what is left.
    gtk_label_set_max_width_chars(GTK_LABEL(label), oneLineChars);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_widget_set_hexpand(label, TRUE);
}

void labelPicture(GtkWidget *picture, GtkWidget *label)
{
    atk_object_add_relationship(gtk_widget_get_accessible(picture), ATK_RELATION_LABELLED_BY,
                                gtk_widget_get_accessible(label));
}

void resizeMainWindow(GtkWidget *window)
{
    gtk_widget_queue_resize(window);
}

gboolean ExpanderCallback(GtkWidget *, GdkEventButton *, ExpanderCallbackData *data)
{
    UI_ENTER();
    CustomExpander *const header = data->customexpander;
    const bool opens = !header->isVisible;
    if (opens)
        gtk_widget_show_all(header->expanderContent);
    else
        gtk_widget_hide(header->expanderContent);
    setArrow(header, opens, GTK_ICON_SIZE_BUTTON);
    header->isVisible = opens;
    if (data->callback)
        data->callback(data->mainwindow);
    return GDK_EVENT_PROPAGATE;
}

void participantsExpandCallback(MainWindow *mainwindow)
{
    UI_ENTER();
    showNoticeWhileAlone(mainwindow, __func__);
}

void fileTransferExpandCallback(MainWindow *mainwindow)
{
    UI_ENTER();
    showSendFileOrNotice(mainwindow);
}

// In the three handlers below the arrow is set to its open form even when the panel is being hidden, on purpose.

void expandParticipantsWidget(GtkWidget *, MainWindow *mainwindow)
{
    UI_ENTER();
    Expander *const panel = mainwindow->participants;
    const bool opens = togglePanel(panel);
    gtk_widget_set_visible(panel->seperator, opens);
    if (opens)
        showNoticeWhileAlone(mainwindow, __func__);
    setArrow(mainwindow->participantsExpander, true, GTK_ICON_SIZE_BUTTON);
    mainwindow->participantsExpander->isVisible = true;
    resizeMainWindow(mainwindow->window);
}

void expandWidget(GtkWidget *, MainWindow *mainwindow)
{
    UI_ENTER();
    mainwindow->chatExpander->isVisible = togglePanel(mainwindow->chat);
    setArrow(mainwindow->chatExpander, true, GTK_ICON_SIZE_SMALL_TOOLBAR);
    resizeMainWindow(mainwindow->window);
}

void expandFileTransfer(GtkWidget *, MainWindow *mainwindow)
{
    UI_ENTER();
    Expander *const panel = mainwindow->fileTransfer;
    const bool opens = togglePanel(panel);
    gtk_widget_set_visible(panel->seperator, opens);
    if (opens)
        showSendFileOrNotice(mainwindow);
    setArrow(mainwindow->fileTransferExpander, true, GTK_ICON_SIZE_SMALL_TOOLBAR);
    mainwindow->fileTransferExpander->isVisible = true;
    resizeMainWindow(mainwindow->window);
}
