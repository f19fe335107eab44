// referenceWindow RESOURCES [FIFO]: the widgets of the control window, written straight down against GTK: the same
// buttons, panels, labels, pictures and style sheet, the panels closed before the window is shown; no log, no session
// bus, no threads, no languages. With FIFO a click on the start/stop button writes a line to it in a bare
// open-write-close.

#include <gtk/gtk.h>

#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace
{

std::string resources;
const char *fifo = nullptr;
GtkWidget *window = nullptr;

std::string resource(const char *file)
{
    return resources + "/" + file;
}

void pack(GtkWidget *box, GtkWidget *child)
{
    gtk_box_pack_start(GTK_BOX(box), child, FALSE, TRUE, 0);
}

GtkWidget *newBox(GtkOrientation orientation)
{
    return gtk_box_new(orientation, 0);
}

GtkWidget *newIconButton(const char *file, int sizePx, const char *tooltip)
{
    GtkWidget *const button = gtk_button_new();
    gtk_button_set_relief(GTK_BUTTON(button), GTK_RELIEF_NONE);
    g_autoptr(GdkPixbuf) picture = gdk_pixbuf_new_from_file_at_size(resource(file).c_str(), sizePx, sizePx, nullptr);
    gtk_button_set_image(GTK_BUTTON(button), gtk_image_new_from_pixbuf(picture));
    gtk_widget_set_tooltip_text(button, tooltip);
    return button;
}

GtkWidget *newToolbar()
{
    GtkWidget *const toolbar = newBox(GTK_ORIENTATION_HORIZONTAL);
    pack(toolbar, newIconButton("participants.png", 18, "Participant"));
    pack(toolbar, newIconButton("chat-black.png", 20, "Chat"));
    pack(toolbar, newIconButton("files-black.png", 20, "File Transfer"));
    pack(toolbar, newIconButton("annotate-black.png", 20, "Annotation"));
    gtk_box_pack_end(GTK_BOX(toolbar), newIconButton("settings.png", 14, "More"), FALSE, TRUE, 0);
    return toolbar;
}

GtkWidget *newPanel(const char *title, GtkWidget *content, GtkWidget *rightButton)
{
    GtkWidget *const header = newBox(GTK_ORIENTATION_HORIZONTAL);
    gtk_widget_set_name(header, "expander");
    GtkWidget *const arrow = gtk_image_new_from_icon_name("pan-end-symbolic", GTK_ICON_SIZE_BUTTON);
    gtk_widget_set_name(arrow, "expanderButton");
    GtkWidget *const titleBox = newBox(GTK_ORIENTATION_HORIZONTAL);
    pack(titleBox, arrow);
    pack(titleBox, gtk_label_new(title));
    GtkWidget *const clickable = gtk_event_box_new();
    gtk_event_box_set_above_child(GTK_EVENT_BOX(clickable), TRUE);
    gtk_container_add(GTK_CONTAINER(clickable), titleBox);
    pack(header, clickable);
    if (rightButton)
        gtk_box_pack_end(GTK_BOX(header), rightButton, FALSE, FALSE, 0);
    GtkWidget *const panel = newBox(GTK_ORIENTATION_VERTICAL);
    pack(panel, header);
    pack(panel, content);
    return panel;
}

GtkWidget *newTextView(const char *name, int heightPx)
{
    GtkWidget *const view = gtk_text_view_new();
    gtk_widget_set_name(view, name);
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    GtkWidget *const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_widget_set_size_request(scrolled, -1, heightPx);
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    return scrolled;
}

GtkWidget *newParticipantsPanel()
{
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    pack(box, gtk_label_new("No participant has joined"));
    return newPanel("Participants", box, nullptr);
}

GtkWidget *newChatPanel()
{
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    pack(box, newTextView("ChatRecive", 175));
    GtkWidget *const input = newTextView("ChatSend", 75);
    g_object_set(input, "margin", 10, nullptr);
    pack(box, input);
    GtkWidget *const download = newIconButton("download.png", 16, "Download Chat");
    gtk_widget_set_name(download, "downloadchat");
    return newPanel("Chat", box, download);
}

GtkWidget *newFileTransferPanel()
{
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    GtkWidget *const send = gtk_button_new_with_label("Send File");
    gtk_widget_set_name(send, "sendFiles");
    gtk_widget_set_halign(send, GTK_ALIGN_CENTER);
    pack(box, send);
    pack(box, gtk_label_new(" Multiple technicians are present! Request the\n technician to intiate file transfer"));
    return newPanel("File Transfer", box, nullptr);
}

GtkWidget *newAnnotationPanel()
{
    struct Tool {
        const char *name, *file, *tooltip;
    };
    const Tool tools[] = {
        {"annotationBrush", "pen.png", "Pen"},          {"annotationRectangle", "rectangle.png", "Rectangle"},
        {"annotationCircle", "ellipse.png", "Ellipse"}, {"AnnotationLine", "line.png", "Line"},
        {"AnnotationEraser", "eraser.png", "Eraser"},   {"AnnotationDeleteAll", "delete2.png", "Clear Screen"},
    };
    GtkWidget *const box = newBox(GTK_ORIENTATION_HORIZONTAL);
    for (const Tool &tool : tools) {
        GtkWidget *const button = newIconButton(tool.file, 16, tool.tooltip);
        gtk_widget_set_name(button, tool.name);
        pack(box, button);
    }
    return newPanel("Annotation", box, nullptr);
}

void on_start_stop_clicked()
{
    if (!fifo)
        return;
    const int pipe = open(fifo, O_WRONLY);
    if (pipe < 0 || write(pipe, "click\n", 6) != 6 || close(pipe) != 0)
        g_error("%s can't be written", fifo);
}

GtkWidget *newStatusRow()
{
    GtkWidget *const row = newBox(GTK_ORIENTATION_HORIZONTAL);
    gtk_widget_set_name(row, "StatusContainer");
    pack(row, gtk_image_new_from_file(resource("offline.png").c_str()));
    pack(row, gtk_label_new("Connecting..."));
    GtkWidget *const startStop = newIconButton("pause.png", 24, "Pause Screen Sharing");
    g_signal_connect(startStop, "clicked", G_CALLBACK(on_start_stop_clicked), nullptr);
    gtk_box_pack_end(GTK_BOX(row), startStop, FALSE, TRUE, 0);
    GtkWidget *const recording = gtk_image_new_from_file(resource("record.gif").c_str());
    gtk_widget_set_name(recording, "glowing-image");
    gtk_widget_set_no_show_all(recording, TRUE);
    gtk_box_pack_end(GTK_BOX(row), recording, FALSE, TRUE, 1);
    return row;
}

GtkWidget *newInfoBar()
{
    GtkWidget *const bar = gtk_info_bar_new();
    gtk_container_add(GTK_CONTAINER(gtk_info_bar_get_content_area(GTK_INFO_BAR(bar))), gtk_label_new(""));
    return bar;
}

void buildMenu()
{
    GtkWidget *const menu = gtk_menu_new();
    GtkWidget *const item = gtk_menu_item_new_with_label("Go to Website");
    gtk_widget_show(item);
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
}

void loadStyle()
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    if (!gtk_css_provider_load_from_path(provider, resource("brindle-gtk.css").c_str(), nullptr))
        g_error("no style sheet in %s", resources.c_str());
}

void buildWindow()
{
    window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_set_name(window, "MainWindow");
    gtk_window_set_title(GTK_WINDOW(window), "referenceWindow");
    gtk_window_set_icon_from_file(GTK_WINDOW(window), resource("logo.png").c_str(), nullptr);
    gtk_widget_set_size_request(window, 350, -1);
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
    gtk_window_set_keep_above(GTK_WINDOW(window), TRUE);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
}

void showClosed()
{
    GtkWidget *const infoBar = newInfoBar();
    GtkWidget *const panels[] = {newParticipantsPanel(), newChatPanel(), newFileTransferPanel(), newAnnotationPanel()};
    GtkWidget *const actions = newBox(GTK_ORIENTATION_VERTICAL);
    gtk_widget_set_name(actions, "actionContainer");
    pack(actions, newToolbar());
    for (GtkWidget *const panel : panels) {
        pack(actions, gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
        pack(actions, panel);
    }
    pack(actions, gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
    GtkWidget *const box = newBox(GTK_ORIENTATION_VERTICAL);
    pack(box, infoBar);
    pack(box, actions);
    pack(box, newStatusRow());
    gtk_container_add(GTK_CONTAINER(window), box);
    loadStyle();
    gtk_widget_show_all(box);
    for (GtkWidget *const panel : panels)
        gtk_widget_hide(panel);
    gtk_widget_hide(infoBar);
    gtk_widget_show(window);
    buildMenu();
}

} // namespace

int main(int argc, char **argv)
{
    gtk_init(&argc, &argv);
    if (argc < 2 || argc > 3)
        g_error("usage: referenceWindow RESOURCES [FIFO]");
    resources = argv[1];
    fifo = argc == 3 ? argv[2] : nullptr;
    buildWindow();
    showClosed();
    gtk_main();
    return 0;
}
