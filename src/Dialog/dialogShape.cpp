// The common shape of the questions. Every dialog is built here from the same few steps, so that the style sheet, the
// keyboard guard and the position reports are the same everywhere.

#include "src/Dialog/dialogShape.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogText.h"
#include "src/IdleThread/widgetCallbacks.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/localizationText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{
constexpr int defaultWidthPx = 360;
constexpr int liftPangoUnits = 10000;
constexpr int scrolledHeightPx = 400, scrolledMinimumPx = 120;
/// Higher texts scroll: with its buttons and its frame a question fits a screen of 768 px.
constexpr int unscrolledHeightPx = 560;
/// A line ends between words; inside of one only when the word would make its dialog wider than this and its margins.
constexpr int widestWordPx = 480;
/// Characters in a line: a longer one is wrapped, a text isn't wrapped into shorter ones.
constexpr int longestLineCharacters = 70, narrowLineCharacters = 32;

/// The keys that answer a question when its buttons can take the focus.
constexpr std::array<guint, 8> swallowedKeys = {GDK_KEY_Return, GDK_KEY_KP_Enter, GDK_KEY_space, GDK_KEY_Tab,
                                                GDK_KEY_Left,   GDK_KEY_Up,       GDK_KEY_Right, GDK_KEY_Down};

void takeFocusAway(GtkWidget *widget)
{
    if (GTK_IS_BUTTON(widget)) {
        gtk_widget_set_can_focus(widget, FALSE);
        gtk_widget_set_can_default(widget, FALSE);
        gtk_button_set_use_underline(GTK_BUTTON(widget), FALSE);
    }
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(
            GTK_CONTAINER(widget), [](GtkWidget *child, gpointer) { takeFocusAway(child); }, nullptr);
}

int narrowestWidth(GtkWidget *label)
{
    int width = 0;
    gtk_widget_show(label); // a hidden one has no size
    gtk_widget_get_preferred_width(label, &width, nullptr);
    return width;
}

/// Letters of some scripts, and boxes for letters that no font has, are much wider or higher than others.
int heightAtNarrowest(GtkWidget *label)
{
    int height = 0;
    gtk_widget_get_preferred_height_for_width(label, narrowestWidth(label), nullptr, &height);
    return height;
}

gboolean closeByTime(GtkWidget *dialog)
{
    g_object_set_data(G_OBJECT(dialog), closingTimerKey, nullptr);
    destroyDialogBox(dialog);
    return G_SOURCE_REMOVE;
}

void disarmOnDestroy(GtkWidget *dialog, const char *)
{
    keepOpen(dialog);
}
} // namespace

PangoAttrList *getPangoLineAttr(int rise)
{
    UI_ENTER();
    PangoAttrList *attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_rise_new(rise));
    return attributes;
}

GtkWidget *newQuestionWindow(const char *title)
{
    GtkWidget *dialog = gtk_dialog_new();
    gtk_window_set_title(GTK_WINDOW(dialog), displayable_text(title).get());
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    gtk_widget_set_name(dialog, "dialogbox");
    return dialog;
}

GtkWidget *addAnswer(GtkWidget *dialog, const char *label, int response)
{
    return gtk_dialog_add_button(GTK_DIALOG(dialog), displayable_text(label).get(), response);
}

GtkWidget *addAcceptAnswer(GtkWidget *dialog, const char *label, int response)
{
    GtkWidget *button = addAnswer(dialog, label, response);
    gtk_widget_set_name(button, "acceptbutton");
    return button;
}

void wrapLabel(GtkWidget *label)
{
    const char *text = gtk_label_get_text(GTK_LABEL(label));
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    // Without these a long text makes a dialog wider than the screen, and a resizable dialog leaves room for a text
    // of one word a line.
    gtk_label_set_max_width_chars(GTK_LABEL(label), longestLineCharacters);
    gtk_label_set_width_chars(GTK_LABEL(label), MIN(measureLongestLine(text), narrowLineCharacters));
    if (narrowestWidth(label) > widestWordPx)
        gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
}

GtkWidget *scrolledWhenLong(GtkWidget *label)
{
    const bool takesMuchRoom = measureTextRoom(gtk_label_get_text(GTK_LABEL(label))) > scrolledTextRoom;
    if (!takesMuchRoom && heightAtNarrowest(label) <= unscrolledHeightPx)
        return label;
    GtkWidget *area = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(area), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(area), TRUE);
    gtk_scrolled_window_set_max_content_height(GTK_SCROLLED_WINDOW(area), scrolledHeightPx);
    gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(area), scrolledMinimumPx);
    gtk_container_add(GTK_CONTAINER(area), label);
    return area;
}

GtkWidget *newAskingLabel(GtkWidget *dialog, const char *text, int acceptResponse, int longestRoom)
{
    bool wasCut = false;
    const OwnedText shown = cutToReadable(text, &wasCut, longestRoom);
    GtkWidget *label = gtk_label_new(shown.get());
    wrapLabel(label);
    if (wasCut || !hasVisibleText(shown.get()))
        gtk_dialog_set_response_sensitive(GTK_DIALOG(dialog), acceptResponse, FALSE);
    return label;
}

GtkWidget *addQuestionLabel(GtkWidget *dialog, const char *text, int acceptResponse)
{
    GtkWidget *label = newAskingLabel(dialog, text, acceptResponse);
    gtk_widget_set_name(label, "dialogboxlabel");
    PangoAttrList *attributes = getPangoLineAttr(liftPangoUnits);
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);

    GtkWidget *content = gtk_dialog_get_content_area(GTK_DIALOG(dialog));
    gtk_container_add(GTK_CONTAINER(content), scrolledWhenLong(label));
    return label;
}

GtkWidget *custom_dialog(const char *title, const char *acceptLabel, const char *rejectLabel, const char *message)
{
    UI_ENTER();
    GtkWidget *dialog = newQuestionWindow(title);
    addAcceptAnswer(dialog, acceptLabel, GTK_RESPONSE_ACCEPT);
    addAnswer(dialog, rejectLabel, GTK_RESPONSE_REJECT);
    addQuestionLabel(dialog, getString(message), GTK_RESPONSE_ACCEPT);
    gtk_window_set_default_size(GTK_WINDOW(dialog), defaultWidthPx, -1);
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    return dialog;
}

void centreDialog(GtkWidget *dialog)
{
    gtk_window_set_gravity(GTK_WINDOW(dialog), GDK_GRAVITY_CENTER);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
}

bool isNormalSession(const MainWindow *mainwindow)
{
    return g_strcmp0(mainwindow->urs, "normal") == 0;
}

gboolean get_window_coordinates(GtkWidget *, GdkEvent *event, const char *key)
{
    UI_ENTER();
    if (!event) {
        UI_DEBUG("event is NULL");
        return FALSE;
    }
    if (event->type != GDK_CONFIGURE)
        return FALSE;
    const GdkEventConfigure &place = event->configure;
    g_autofree char *text =
        g_strdup_printf("dialog_position %s %d %d %d %d", key, place.x, place.y, place.width, place.height);
    encodeDialogeResponseMessage(text, g_UiStatus);
    return FALSE;
}

gboolean Key_Press(GtkWidget *, GdkEventKey *event, MainWindow *mainwindow)
{
    UI_ENTER();
    return isNormalSession(mainwindow) && std::ranges::find(swallowedKeys, event->keyval) != swallowedKeys.end();
}

void guardFromKeyboard(GtkWidget *dialog, MainWindow *mainwindow)
{
    connect_signal(dialog, "key-press-event", Key_Press, mainwindow);
    if (isNormalSession(mainwindow))
        takeFocusAway(dialog);
}

void showOnRefusal(GtkWidget *dialog, int refusingResponse)
{
    GtkWidget *const refusal = gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), refusingResponse);
    if (refusal)
        gtk_widget_grab_focus(refusal);
    gtk_widget_show_all(dialog);
    if (!refusal)
        gtk_window_set_focus(GTK_WINDOW(dialog), nullptr);
}

void reportPosition(GtkWidget *dialog, const char *key)
{
    gtk_widget_add_events(dialog, GDK_STRUCTURE_MASK);
    connect_signal_owning(dialog, "configure-event", get_window_coordinates, OwnedText(g_strdup(key)));
}

void listenToStructure(const MainWindow *mainwindow)
{
    if (isOpenWindow(mainwindow->window))
        gtk_widget_add_events(mainwindow->window, GDK_STRUCTURE_MASK);
}

void closeAfter(GtkWidget *dialog, guint afterMs)
{
    const guint timerId = g_timeout_add(afterMs, reinterpret_cast<GSourceFunc>(closeByTime), dialog);
    g_object_set_data(G_OBJECT(dialog), closingTimerKey, GUINT_TO_POINTER(timerId));
    connect_signal(dialog, "destroy", disarmOnDestroy, closingTimerKey);
}

void keepOpen(GtkWidget *dialog)
{
    const guint timerId = GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(dialog), closingTimerKey));
    g_object_set_data(G_OBJECT(dialog), closingTimerKey, nullptr);
    if (timerId)
        g_source_remove(timerId);
}

OwnedText takeText(GMutex *mutex, char *&field)
{
    const MutexLock lock(mutex);
    return OwnedText(std::exchange(field, nullptr));
}

bool isOpenWindow(GtkWidget *window)
{
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    return window && g_list_find(windows, window);
}
