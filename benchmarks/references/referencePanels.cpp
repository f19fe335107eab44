// referencePanels RESOURCES ORDERS: a conversation and a list of participants, written straight down: a text view with
// the conversation's tags, and rows of a picture, a name and a button with a menu. The FIFO ORDERS says what is added,
// one thing in each turn of the main loop: "messages COUNT" or "participants COUNT".

#include <glib-unix.h>
#include <gtk/gtk.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace
{

std::string resources;
GtkWidget *view = nullptr;
GtkWidget *rows = nullptr;
int messagesToCome = 0, messages = 0;
int participantsToCome = 0, participants = 0;

std::string resource(const char *file)
{
    return resources + "/" + file;
}

// ----------------------------------------------------------------------------------------------------- conversation

void createTags(GtkTextBuffer *buffer)
{
    gtk_text_buffer_create_tag(buffer, "lmarg", "left-margin", 10, "right-margin", 60, nullptr);
    gtk_text_buffer_create_tag(buffer, "recivercolor", "foreground", "#27233A", nullptr);
    gtk_text_buffer_create_tag(buffer, "gray_bg", "pixels-above-lines", 6, nullptr);
    gtk_text_buffer_create_tag(buffer, "leftjustification", "justification", GTK_JUSTIFY_LEFT, nullptr);
    gtk_text_buffer_create_tag(buffer, "msg_size", "size", 11 * PANGO_SCALE, nullptr);
}

GtkWidget *newConversation()
{
    view = gtk_text_view_new();
    gtk_widget_set_name(view, "ChatRecive");
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
    gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), FALSE);
    createTags(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)));
    GtkWidget *const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_widget_set_size_request(scrolled, 350, 175);
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    return scrolled;
}

gboolean addMessage(gpointer)
{
    GtkTextBuffer *const buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    g_autofree char *text = g_strdup_printf("This is message %d of the conversation.", messages++);
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer, &end);
    gtk_text_buffer_insert_with_tags_by_name(buffer, &end, text, -1, "lmarg", "gray_bg", "msg_size",
                                             "leftjustification", "recivercolor", nullptr);
    gtk_text_buffer_insert(buffer, &end, "\n", 1);
    gtk_text_view_scroll_to_mark(GTK_TEXT_VIEW(view), gtk_text_buffer_create_mark(buffer, "end", &end, FALSE), 0, FALSE,
                                 0, 0);
    return --messagesToCome > 0 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

// ----------------------------------------------------------------------------------------------------- participants

GtkWidget *newPicture(const char *file)
{
    g_autoptr(GdkPixbuf) picture = gdk_pixbuf_new_from_file_at_size(resource(file).c_str(), 12, 12, nullptr);
    return gtk_image_new_from_pixbuf(picture);
}

GtkWidget *newMenu()
{
    GtkWidget *const menu = gtk_menu_new();
    for (const char *const label : {"Swap Screen", "Revoke Control"}) {
        GtkWidget *const item = gtk_menu_item_new_with_label(label);
        gtk_widget_show(item);
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    }
    return menu;
}

GtkWidget *newName(int number)
{
    g_autofree char *name = g_strdup_printf("Participant %d", number);
    GtkWidget *const label = gtk_label_new(name);
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_tooltip_text(label, name);
    return label;
}

gboolean addParticipant(gpointer)
{
    GtkWidget *const row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_box_pack_start(GTK_BOX(row), newPicture("cursor.png"), FALSE, TRUE, 2);
    gtk_box_pack_start(GTK_BOX(row), newName(participants++), FALSE, TRUE, 0);
    GtkWidget *const button = gtk_button_new();
    gtk_button_set_relief(GTK_BUTTON(button), GTK_RELIEF_NONE);
    gtk_button_set_image(GTK_BUTTON(button), newPicture("settings.png"));
    g_object_set_data_full(G_OBJECT(button), "menu", g_object_ref_sink(newMenu()), g_object_unref);
    gtk_box_pack_end(GTK_BOX(row), button, FALSE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(rows), row, TRUE, TRUE, 0);
    gtk_widget_show_all(row);
    return --participantsToCome > 0 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

// ------------------------------------------------------------------------------------------------------------ orders

void obey(const char *order)
{
    if (sscanf(order, "messages %d", &messagesToCome) == 1)
        g_idle_add(addMessage, nullptr);
    else if (sscanf(order, "participants %d", &participantsToCome) == 1)
        g_idle_add(addParticipant, nullptr);
    else
        g_error("no order: %s", order);
}

gboolean readOrder(int pipe, GIOCondition, gpointer)
{
    char order[100];
    const ssize_t length = read(pipe, order, sizeof order - 1);
    if (length <= 0)
        g_error("no orders");
    order[length] = '\0';
    obey(order);
    return G_SOURCE_CONTINUE;
}

void loadStyle()
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    if (!gtk_css_provider_load_from_path(provider, resource("brindle-gtk.css").c_str(), nullptr))
        g_error("no style sheet in %s", resources.c_str());
}

/// The list of participants is closed, as the program's panel is at first.
void showWindow()
{
    GtkWidget *const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_set_name(window, "MainWindow");
    gtk_window_set_title(GTK_WINDOW(window), "referencePanels");
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
    GtkWidget *const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    rows = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    GtkWidget *const panel = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_add(GTK_CONTAINER(panel), rows);
    gtk_container_add(GTK_CONTAINER(box), panel);
    gtk_container_add(GTK_CONTAINER(box), newConversation());
    gtk_container_add(GTK_CONTAINER(window), box);
    loadStyle();
    gtk_widget_show_all(box);
    gtk_widget_hide(panel);
    gtk_widget_show(window);
}

} // namespace

int main(int argc, char **argv)
{
    gtk_init(&argc, &argv);
    if (argc != 3)
        g_error("usage: referencePanels RESOURCES ORDERS");
    resources = argv[1];
    const int orders = open(argv[2], O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (orders < 0)
        g_error("%s can't be read", argv[2]);
    showWindow();
    g_unix_fd_add(orders, G_IO_IN, readOrder, nullptr);
    gtk_main();
    return 0;
}
