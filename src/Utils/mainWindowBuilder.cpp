// Builds the control window from top to bottom: info bar, toolbar and panels, status row. Each row or panel is one
// function. Widgets that the records name are kept to the end of the process, so that a line of the agent that comes
// after the window has gone still meets valid objects.

#include "src/Utils/mainWindowBuilder.h"

#include "Logger/logger.h"
#include "src/Annotation/annotation.h"
#include "src/Chat/chat.h"
#include "src/Utils/panels.h"
#include "src/Utils/pipeTransport.h"
#include "src/Utils/smallScreen.h"
#include "src/controls.h"
#include "src/localizationText.h"
#include "src/support.h"

namespace
{

constexpr int windowWidthPx = 350;
constexpr int statusMarginPx = 2;
constexpr int fileTransferPaddingPx = 5;
constexpr int recordingPaddingPx = 1;
constexpr int settingsIconPx = 14;
constexpr int toolIconPx = 16;
constexpr int noticeWidthChars = 40;
constexpr int panelHidden = 2;

// Shown as they are in every language.
constexpr char nobodyJoined[] = "No participant has joined";
constexpr char downloadChat[] = "Download Chat";
constexpr char severalTechniciansPresent[] =
    " Multiple technicians are present! Request the\n technician to intiate file transfer";

GtkWidget *newBox(GtkOrientation orientation)
{
    return gtk_box_new(orientation, 0);
}

void pack(GtkWidget *box, GtkWidget *child)
{
    gtk_box_pack_start(GTK_BOX(box), child, FALSE, TRUE, 0);
}

GtkWidget *newSeparator()
{
    return gtk_separator_new(GTK_ORIENTATION_HORIZONTAL);
}

GtkWidget *newFlatButton()
{
    GtkWidget *const button = keep_widget(gtk_button_new());
    gtk_button_set_relief(GTK_BUTTON(button), GTK_RELIEF_NONE);
    return button;
}

void setVerticalMargins(GtkWidget *widget, int marginPx)
{
    gtk_widget_set_margin_top(widget, marginPx);
    gtk_widget_set_margin_bottom(widget, marginPx);
}

/// The tooltip of a button that shows only a picture is its name, too.
void setIconButtonText(GtkWidget *button, const char *text)
{
    gtk_widget_set_tooltip_text(button, text);
    atk_object_set_name(gtk_widget_get_accessible(button), text);
}

void initialiseLocks(MainWindow *mainwindow)
{
    g_mutex_init(&mainwindow->mutex);
    g_mutex_init(&mainwindow->PingUiMutex);
    g_mutex_init(&pipeMutex);
}

void setReachTexts(GtkWidget *window)
{
    const char *const title = getString("Ostrel Reach  ");
    gtk_widget_set_tooltip_text(window, title);
    gtk_window_set_title(GTK_WINDOW(window), title);
    UI_INFO_AS("createMainWindow", "Settings title as OstrelReach");
}

/// Without its picture the window has none; with no error to fill in, GTK would complain on standard error.
/// Also for questions: most have no parent to take it from. A picture that can't be read leaves all without one.
void setIcon(GtkWidget *window, const char *path)
{
    g_autoptr(GdkPixbuf) icon = gdk_pixbuf_new_from_file(path, nullptr);
    if (!icon)
        return;
    gtk_window_set_icon(GTK_WINDOW(window), icon);
    gtk_window_set_default_icon(icon);
}

void buildWindow(MainWindow *mainwindow)
{
    GtkWidget *const window = keep_widget(gtk_window_new(GTK_WINDOW_TOPLEVEL));
    mainwindow->window = window;
    gtk_widget_set_size_request(window, windowWidthPx, -1);
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
    gtk_window_set_title(GTK_WINDOW(window), mainwindow->productWindowTitle);
    UI_INFO_AS("createMainWindow", "Window title: %s\n", mainwindow->productWindowTitle);
    if (g_strcmp0(mainwindow->urs, "oreach") == 0)
        setReachTexts(window);
    setIcon(window, mainwindow->logoImagePath);
    gtk_widget_set_name(window, "MainWindow");
    gtk_window_set_gravity(GTK_WINDOW(window), GDK_GRAVITY_CENTER);
    gtk_window_set_keep_above(GTK_WINDOW(window), TRUE);
}

void makeRecords(MainWindow *mainwindow, ChatWindow *chatwindow)
{
    mainwindow->participants = new Expander();
    mainwindow->chat = new Expander();
    mainwindow->fileTransfer = new Expander();
    mainwindow->infoBarStruct = new InfoBar();
    chatwindow->infobar = mainwindow->infoBarStruct;
    mainwindow->chatExpander = new CustomExpander();
    mainwindow->participantsExpander = new CustomExpander();
    mainwindow->fileTransferExpander = new CustomExpander();
    mainwindow->annotationExpander = new CustomExpander();
}

GtkWidget *buildInfoBar(MainWindow *mainwindow)
{
    InfoBar *const infoBar = mainwindow->infoBarStruct;
    infoBar->mainWindow = mainwindow->window;
    infoBar->infoBar = keep_widget(gtk_info_bar_new());
    infoBar->infoBarLabel = keep_widget(gtk_label_new(""));
    gtk_label_set_line_wrap(GTK_LABEL(infoBar->infoBarLabel), TRUE);
    gtk_label_set_max_width_chars(GTK_LABEL(infoBar->infoBarLabel), noticeWidthChars);
    GtkWidget *const content = gtk_info_bar_get_content_area(GTK_INFO_BAR(infoBar->infoBar));
    gtk_container_add(GTK_CONTAINER(content), infoBar->infoBarLabel);
    return infoBar->infoBar;
}

GtkWidget *buildToolbar(MainWindow *mainwindow)
{
    GtkWidget *const toolbar = newBox(GTK_ORIENTATION_HORIZONTAL);
    pack(toolbar, mainwindow->participants->button = newFlatButton());
    pack(toolbar, mainwindow->chat->button = newFlatButton());
    pack(toolbar, mainwindow->fileTransfer->button = newFlatButton());
    pack(toolbar, mainwindow->annotation->button = newFlatButton());
    mainwindow->settingsButton = newFlatButton();
    setIconButtonText(mainwindow->settingsButton, getString("More"));
    gtk_box_pack_end(GTK_BOX(toolbar), mainwindow->settingsButton, FALSE, TRUE, 0);
    return toolbar;
}

/// What the panels of `Expander` have in common.
void startPanel(Expander *panel, MainWindow *mainwindow)
{
    panel->mainWindow = mainwindow->window;
    panel->buttonState = panelHidden;
    panel->seperator = keep_widget(newSeparator());
}

void buildParticipantsPanel(MainWindow *mainwindow)
{
    Expander *const panel = mainwindow->participants;
    startPanel(panel, mainwindow);
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    panel->textBar = keep_widget(gtk_label_new(nobodyJoined));
    setVerticalMargins(panel->textBar, statusMarginPx);
    gtk_box_pack_start(GTK_BOX(box), panel->textBar, FALSE, FALSE, 0);
    const PanelParts parts = {getString("Participants"), nullptr, mainwindow->participantsExpander, box,
                              participantsExpandCallback};
    panel->contentArea = createExapnder(parts, mainwindow);
}

void buildChatPanel(MainWindow *mainwindow, ChatWindow *chatwindow)
{
    Expander *const panel = mainwindow->chat;
    startPanel(panel, mainwindow);
    GtkWidget *const view = ChatWindowNew(chatwindow);
    chatwindow->chat = panel;
    chatwindow->chatExpander = mainwindow->chatExpander;
    const PanelParts parts = {getString("Chat"), mainwindow->chatTranscriptImagePath, mainwindow->chatExpander, view,
                              nullptr};
    panel->contentArea = createExapnder(parts, mainwindow);
    chatwindow->chat_area = panel->contentArea;
    GtkWidget *const download = mainwindow->chatExpander->rightButton;
    setIconButtonText(download, downloadChat);
    gtk_widget_set_name(download, "downloadchat");
    gtk_widget_set_sensitive(download, FALSE);
}

struct Tool {
    GtkWidget *Annotation::*button;
    GtkWidget *Annotation::*image;
    char *Annotation::*path;
    const char *name;
    const char *tooltip;
};
// In the order in which they stand in the panel.
constexpr Tool tools[] = {
    {&Annotation::brush, &Annotation::brushImage, &Annotation::brushPath, "annotationBrush", "Pen"},
    {&Annotation::rectangle, &Annotation::rectangeImage, &Annotation::rectangePath, "annotationRectangle", "Rectangle"},
    {&Annotation::circle, &Annotation::circleImage, &Annotation::circlePath, "annotationCircle", "Ellipse"},
    {&Annotation::line, &Annotation::lineImage, &Annotation::linePath, "AnnotationLine", "Line"},
    {&Annotation::eraser, &Annotation::eraserImage, &Annotation::eraserPath, "AnnotationEraser", "Eraser"},
    {&Annotation::eraseAll, &Annotation::eraseAllImage, &Annotation::eraseAllPath, "AnnotationDeleteAll",
     "Clear Screen"},
};

void addTool(Annotation *annotation, const Tool &tool, GtkWidget *box)
{
    GtkWidget *const button = annotation->*tool.button = newFlatButton();
    gtk_widget_set_name(button, tool.name);
    annotation->*tool.image = keep_widget(resizeImages(annotation->*tool.path, toolIconPx, 0));
    gtk_button_set_image(GTK_BUTTON(button), annotation->*tool.image);
    setIconButtonText(button, getString(tool.tooltip));
    pack(box, button);
}

void buildAnnotationPanel(MainWindow *mainwindow)
{
    Annotation *const annotation = mainwindow->annotation;
    annotation->mainWindow = mainwindow->window;
    GtkWidget *const box = newBox(GTK_ORIENTATION_HORIZONTAL);
    for (const Tool &tool : tools)
        addTool(annotation, tool, box);
    setupAnnotationClickHandling(mainwindow);
    setAnnotationPath(mainwindow->urs, annotation, mainwindow);
    annotation->buttonState = panelHidden;
    const PanelParts parts = {getString("Annotation"), nullptr, mainwindow->annotationExpander, box, nullptr};
    annotation->contentArea = createExapnder(parts, mainwindow);
}

void buildFileTransferPanel(MainWindow *mainwindow)
{
    Expander *const panel = mainwindow->fileTransfer;
    startPanel(panel, mainwindow);
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    mainwindow->sendFile = keep_widget(gtk_button_new_with_label(getString("Send File")));
    gtk_widget_set_name(mainwindow->sendFile, "sendFiles");
    gtk_widget_set_halign(mainwindow->sendFile, GTK_ALIGN_CENTER);
    gtk_widget_set_valign(mainwindow->sendFile, GTK_ALIGN_CENTER);
    panel->textBar = keep_widget(gtk_label_new(severalTechniciansPresent));
    gtk_box_pack_start(GTK_BOX(box), mainwindow->sendFile, FALSE, FALSE, fileTransferPaddingPx);
    gtk_box_pack_start(GTK_BOX(box), panel->textBar, FALSE, FALSE, fileTransferPaddingPx);
    const PanelParts parts = {getString("File Transfer"), nullptr, mainwindow->fileTransferExpander, box,
                              fileTransferExpandCallback};
    panel->contentArea = createExapnder(parts, mainwindow);
}

GtkWidget *buildActionBox(MainWindow *mainwindow, ChatWindow *chatwindow)
{
    GtkWidget *const toolbar = buildToolbar(mainwindow);
    buildParticipantsPanel(mainwindow);
    buildChatPanel(mainwindow, chatwindow);
    buildAnnotationPanel(mainwindow);
    buildFileTransferPanel(mainwindow);

    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    gtk_widget_set_name(box, "actionContainer");
    GtkWidget *const rows[] = {
        toolbar,
        newSeparator(),
        mainwindow->participants->contentArea,
        mainwindow->participants->seperator,
        mainwindow->chat->contentArea,
        mainwindow->chat->seperator,
        mainwindow->fileTransfer->contentArea,
        mainwindow->fileTransfer->seperator,
        mainwindow->annotation->contentArea,
        newSeparator(),
    };
    for (GtkWidget *const row : rows)
        pack(box, row);
    return box;
}

GtkWidget *newStatusLabel()
{
    GtkWidget *const label = keep_widget(gtk_label_new(""));
    setVerticalMargins(label, statusMarginPx);
    makeOneLine(label);
    return label;
}

void buildStatusButtons(MainWindow *mainwindow)
{
    mainwindow->startStopSharingButton = newFlatButton();
    setVerticalMargins(mainwindow->startStopSharingButton, statusMarginPx);
    // Themes know a button by this that holds nothing but an image.
    gtk_style_context_add_class(gtk_widget_get_style_context(mainwindow->startStopSharingButton), "image-button");
    mainwindow->onDemandScreenSharing = newFlatButton(); // never placed in the window
    setVerticalMargins(mainwindow->onDemandScreenSharing, statusMarginPx);
    gtk_widget_set_sensitive(mainwindow->onDemandScreenSharing, FALSE);
    mainwindow->onDemandScreenSharingImage = keep_widget(newAnimatedImage(mainwindow->imageRecording));
    gtk_widget_set_name(mainwindow->onDemandScreenSharingImage, "glowing-image");
}

GtkWidget *buildStatusRow(MainWindow *mainwindow)
{
    GtkWidget *const row = newBox(GTK_ORIENTATION_HORIZONTAL);
    gtk_widget_set_name(row, "StatusContainer");
    mainwindow->statusIcon = keep_widget(newImageFromFile(mainwindow->imageOffline));
    mainwindow->statusLabel = newStatusLabel();
    buildStatusButtons(mainwindow);
    labelPicture(mainwindow->statusIcon, mainwindow->statusLabel);
    labelPicture(mainwindow->onDemandScreenSharingImage, mainwindow->statusLabel);
    pack(row, mainwindow->statusIcon);
    pack(row, mainwindow->statusLabel);
    gtk_box_pack_end(GTK_BOX(row), mainwindow->startStopSharingButton, FALSE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(row), mainwindow->onDemandScreenSharingImage, FALSE, TRUE, recordingPaddingPx);
    return row;
}

/// A toolbar button's picture.
struct ToolbarImage {
    GtkWidget *button;
    GtkWidget **image;
    const char *path;
    int sizePx;
    const char *tooltip; ///< translated
};

void setToolbarImages(MainWindow *mainwindow)
{
    constexpr int marginPx = 2;
    const ToolbarImage images[] = {
        {mainwindow->participants->button, &mainwindow->participantsButtonImage,
         mainwindow->participantsButtonImagePath, 18, getString("Participant")},
        {mainwindow->chat->button, &mainwindow->chatButtonImage, mainwindow->chatButtonImagePath, 20,
         getString("Chat")},
        {mainwindow->annotation->button, &mainwindow->annotationButtonImage, mainwindow->annotationButtonImagePath, 20,
         getString("Annotation")},
        {mainwindow->fileTransfer->button, &mainwindow->fileTransferButtonImage,
         mainwindow->fileTransferButtonImagePath, 20, getString("File Transfer")},
    };
    for (const ToolbarImage &toolbar : images) {
        *toolbar.image = keep_widget(resizeImages(toolbar.path, toolbar.sizePx, marginPx));
        gtk_button_set_image(GTK_BUTTON(toolbar.button), *toolbar.image);
        setIconButtonText(toolbar.button, toolbar.tooltip);
    }
    mainwindow->settingsButtonImage = keep_widget(resizeImages(mainwindow->settingsButtonImagePath, settingsIconPx, 0));
    gtk_widget_set_name(mainwindow->settingsButtonImage, "settingsImage");
}

} // namespace

int createMainWindow(MainWindow *mainwindow, ChatWindow *chatwindow)
{
    UI_ENTER();
    initialiseLocks(mainwindow);
    buildWindow(mainwindow);
    makeRecords(mainwindow, chatwindow);
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    pack(box, buildInfoBar(mainwindow));
    GtkWidget *const actionBox = buildActionBox(mainwindow, chatwindow);
    pack(box, actionBox);
    pack(box, buildStatusRow(mainwindow));
    gtk_container_add(GTK_CONTAINER(mainwindow->window), box);
    setToolbarImages(mainwindow);
    connect_signal(mainwindow->sendFile, "clicked", onSendFilesClicked, mainwindow);
    setDepricatedApis(mainwindow);
    scrollWithoutRoom(mainwindow, actionBox);
    gtk_widget_add_events(mainwindow->window, GDK_STRUCTURE_MASK);
    return 0;
}
