// The control window on a small screen. Each time the window is about to be laid out, what it asks for is compared with
// the work area of its monitor. The first time that the room does not do, the panels move into a scrolled window
// between the toolbar and the closing separator, and stay there: it takes the height that is left, and as long as that
// does, the one that they ask for. A panel that opens is scrolled to.

#include "src/Utils/smallScreen.h"

#include "src/support.h"

namespace
{

constexpr char openedKey[] = "opened-panel";
constexpr int toolbarPosition = 0;

GtkWidget *childOf(GtkWidget *bin)
{
    return gtk_bin_get_child(GTK_BIN(bin));
}

// -------------------------------------------------------------------------------------------------------- room

int naturalHeight(GtkWidget *widget)
{
    int height = 0;
    gtk_widget_get_preferred_height_for_width(widget, gtk_widget_get_allocated_width(widget), nullptr, &height);
    return height;
}

int workAreaHeight(GdkWindow *window)
{
    GdkRectangle area = {};
    gdk_monitor_get_workarea(gdk_display_get_monitor_at_window(gdk_window_get_display(window), window), &area);
    return area.height;
}

/// As the display server knows it now; what the toolkit has heard of may be older.
int heightOnServer(GdkWindow *window)
{
    int height = 0;
    gdk_window_get_geometry(window, nullptr, nullptr, nullptr, &height);
    return height;
}

/// The frame that the window manager draws. While it resizes the window, it is asked again.
int outerFrameHeight(GdkWindow *window)
{
    GdkRectangle outside = {};
    int height = 0;
    do {
        height = heightOnServer(window);
        gdk_window_get_frame_extents(window, &outside);
    } while (height != heightOnServer(window));
    return outside.height - height;
}

/// The frame that the window manager draws, or that the toolkit itself does around the content.
int frameHeight(GtkWidget *window)
{
    return outerFrameHeight(gtk_widget_get_window(window)) + gtk_widget_get_allocated_height(window) -
           gtk_widget_get_allocated_height(childOf(window));
}

/// What the work area has left when the window gets the height it asks for; negative when it has not that much.
int spareHeight(GtkWidget *window)
{
    return workAreaHeight(gtk_widget_get_window(window)) - frameHeight(window) - naturalHeight(childOf(window));
}

// ------------------------------------------------------------------------------------------------------ scroll

/// What the panels scroll in, or null.
GtkWidget *scrollerIn(GtkWidget *actionBox)
{
    g_autoptr(GList) rows = gtk_container_get_children(GTK_CONTAINER(actionBox));
    auto *const row = static_cast<GtkWidget *>(g_list_nth_data(rows, toolbarPosition + 1));
    return GTK_IS_SCROLLED_WINDOW(row) ? row : nullptr;
}

/// What holds the panels' box in a scrolled window. Not a viewport: of what has a window of its own in one, as headers
/// and text fields do, the toolkit tells assistive technology that it can't be seen.
GtkLayout *sheetIn(GtkWidget *scroller)
{
    return GTK_LAYOUT(childOf(scroller));
}

GtkWidget *panelsIn(GtkWidget *scroller)
{
    g_autoptr(GList) boxes = gtk_container_get_children(GTK_CONTAINER(sheetIn(scroller)));
    return static_cast<GtkWidget *>(boxes->data);
}

/// The box for the panels has the name, and with it the look, of the one which they come from.
GtkWidget *newScroller(GtkWidget *actionBox)
{
    GtkWidget *const panels = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_name(panels, gtk_widget_get_name(actionBox));
    GtkWidget *const sheet = gtk_layout_new(nullptr, nullptr);
    gtk_container_add(GTK_CONTAINER(sheet), panels);
    GtkWidget *const scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_container_add(GTK_CONTAINER(scroller), sheet);
    GtkAdjustment *const height = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller));
    gtk_container_set_focus_vadjustment(GTK_CONTAINER(sheet), height);
    gtk_widget_show_all(scroller);
    return scroller;
}

/// Moves all rows but the toolbar and the closing separator. The separator under the toolbar goes along: in the style
/// sheet, the first box of a box is the toolbar.
void moveRows(GtkWidget *from, GtkWidget *to)
{
    g_autoptr(GList) rows = gtk_container_get_children(GTK_CONTAINER(from));
    for (GList *row = g_list_nth(rows, toolbarPosition + 1); row->next; row = row->next) {
        g_object_ref(row->data);
        gtk_container_remove(GTK_CONTAINER(from), GTK_WIDGET(row->data));
        gtk_box_pack_start(GTK_BOX(to), GTK_WIDGET(row->data), FALSE, TRUE, 0);
        g_object_unref(row->data);
    }
}

/// The keyboard stays where it was.
GtkWidget *addScroller(GtkWidget *window, GtkWidget *actionBox)
{
    GtkWidget *const focus = gtk_window_get_focus(GTK_WINDOW(window));
    GtkWidget *const scroller = newScroller(actionBox);
    moveRows(actionBox, panelsIn(scroller));
    gtk_box_pack_start(GTK_BOX(actionBox), scroller, FALSE, TRUE, 0);
    gtk_box_reorder_child(GTK_BOX(actionBox), scroller, toolbarPosition + 1);
    if (focus)
        gtk_widget_grab_focus(focus);
    return scroller;
}

/// What the panels need, whatever their box was given before.
int widthOfPanels(GtkWidget *panels)
{
    g_autoptr(GList) rows = gtk_container_get_children(GTK_CONTAINER(panels));
    int widest = 0;
    for (const GList *row = rows; row; row = row->next) {
        int width = 0;
        gtk_widget_get_preferred_width(static_cast<GtkWidget *>(row->data), &width, nullptr);
        widest = MAX(widest, width);
    }
    return widest;
}

/// Gives the panels the height they ask for, or has them scroll in the height there is.
void shareRoom(GtkWidget *actionBox, GtkWidget *scroller, int roomPx)
{
    GtkWidget *const panels = panelsIn(scroller);
    const int width = widthOfPanels(panels);
    gtk_widget_set_size_request(panels, MAX(width, gtk_widget_get_allocated_width(actionBox)), -1);
    const int height = naturalHeight(panels);
    const bool fits = height <= roomPx;
    GtkLayout *const sheet = sheetIn(scroller);
    gtk_layout_set_size(sheet, guint(width), guint(height));
    gtk_widget_set_size_request(GTK_WIDGET(sheet), width, fits && height > 0 ? height : -1);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER,
                                   fits ? GTK_POLICY_NEVER : GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scroller), fits ? -1 : MAX(roomPx, 0));
}

/// The window is about to be laid out.
void fitPanels(GtkWidget *window, GtkWidget *actionBox)
{
    if (!gtk_widget_get_mapped(window))
        return;
    GtkWidget *scroller = scrollerIn(actionBox);
    if (!scroller && spareHeight(window) >= 0)
        return;
    if (!scroller)
        scroller = addScroller(window, actionBox);
    shareRoom(actionBox, scroller, naturalHeight(scroller) + spareHeight(window));
}

// ------------------------------------------------------------------------------------------------ opened panels

/// Its place is known once it is laid out.
void notePanel(GtkWidget *panel, GtkWidget *actionBox)
{
    g_object_set_data(G_OBJECT(actionBox), openedKey, panel);
}

void notePanelOfContent(GtkWidget *content, GtkWidget *actionBox)
{
    notePanel(gtk_widget_get_parent(content), actionBox);
}

gboolean scrollToOpened(GtkWidget *actionBox, GdkFrameClock *, gpointer)
{
    auto *const panel = static_cast<GtkWidget *>(g_object_steal_data(G_OBJECT(actionBox), openedKey));
    GtkWidget *const scroller = scrollerIn(actionBox);
    if (!panel || !scroller || !gtk_widget_get_visible(panel))
        return G_SOURCE_REMOVE;
    GtkAllocation place;
    gtk_widget_get_allocation(panel, &place);
    gtk_adjustment_clamp_page(gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller)), place.y,
                              place.y + place.height);
    return G_SOURCE_REMOVE;
}

/// Not at once: a scroll bar that moves while it is laid out is laid out no more.
void notePlaces(GtkWidget *actionBox, GdkRectangle *, GtkWidget *)
{
    if (g_object_get_data(G_OBJECT(actionBox), openedKey))
        gtk_widget_add_tick_callback(actionBox, scrollToOpened, nullptr, nullptr);
}

} // namespace

void scrollWithoutRoom(const MainWindow *mainwindow, GtkWidget *actionBox)
{
    connect_signal(mainwindow->window, "check-resize", fitPanels, actionBox);
    connect_signal(actionBox, "size-allocate", notePlaces, actionBox);
    const CustomExpander *const headers[] = {mainwindow->participantsExpander, mainwindow->chatExpander,
                                             mainwindow->fileTransferExpander, mainwindow->annotationExpander};
    for (const CustomExpander *const header : headers) {
        connect_signal(header->expanderContent, "show", notePanelOfContent, actionBox);
        connect_signal(gtk_widget_get_parent(header->expanderContent), "show", notePanel, actionBox);
    }
}
