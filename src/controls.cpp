// The controls of the main window. Each changes the window first and sends its line last, so that the customer sees
// the new state even while the agent does not answer.

#include "src/controls.h"

#include "Logger/logger.h"
#include "src/Dialog/dialog.h"
#include "src/Utils/panels.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/localizationText.h"
#include "src/support.h"

#include <gmodule.h>

namespace
{

constexpr char toEveryTechnician[] = "-1";

void makeSharingImages(MainWindow *mainwindow)
{
    replace_widget(mainwindow->startSharingImage, newImageFromFile(mainwindow->imageStartButton));
    replace_widget(mainwindow->stopSharingImage, newImageFromFile(mainwindow->imageStopButton));
}

/// What the next click on the start/stop button does, in words.
const char *sharingAction(int state)
{
    return state == paused ? getString("Resume Screen Sharing") : getString("Pause Screen Sharing");
}

/// Makes an image all that a button holds. The toolkit's own way to give a button an image puts it into a new box, and
/// the time for that would come between the click and its line.
void showOnButton(GtkWidget *button, GtkWidget *image)
{
    GtkWidget *const shown = gtk_bin_get_child(GTK_BIN(button));
    if (shown == image)
        return;
    if (shown)
        gtk_container_remove(GTK_CONTAINER(button), shown);
    gtk_container_add(GTK_CONTAINER(button), image);
    gtk_widget_show(image);
}

void putSharingImage(MainWindow *mainwindow)
{
    GtkWidget *const button = mainwindow->startStopSharingButton;
    if (!gtk_widget_get_parent(button))
        return; // the window has gone, and with it the button's own picture
    const bool isPaused = mainwindow->StartButtonState == paused;
    showOnButton(button, isPaused ? mainwindow->startSharingImage : mainwindow->stopSharingImage);
    const char *const action = sharingAction(mainwindow->StartButtonState);
    // The description, too: else it would be the tooltip, where there is none yet.
    AtkObject *const accessible = gtk_widget_get_accessible(button);
    atk_object_set_name(accessible, action);
    atk_object_set_description(accessible, action);
}

void beginSession(MainWindow *mainwindow)
{
    UI_INFO_AS("on_start_clicked", "Agent has been Started");
    gtk_widget_set_sensitive(mainwindow->startStopSharingButton, FALSE);
    gtk_label_set_text(GTK_LABEL(mainwindow->statusLabel), getString("Connecting..."));
    mainwindow->StartButtonState = sharing;
}

/// What pausing and resuming have in common, once the state is the new one.
void showSharingChange(MainWindow *mainwindow)
{
    GtkWidget *const button = mainwindow->startStopSharingButton;
    mainwindow->sharingButtonHadFocus = gtk_widget_has_focus(button);
    gtk_widget_set_sensitive(button, FALSE);
    gtk_widget_set_tooltip_text(button, sharingAction(mainwindow->StartButtonState));
    putSharingImage(mainwindow);
    // The online picture comes back with the agent's report.
    setImageFromFile(mainwindow->statusIcon, mainwindow->imageOffline);
}

void pauseSharing(MainWindow *mainwindow)
{
    UI_INFO_AS("on_start_clicked", " Stop button has been pressed ");
    mainwindow->StartButtonState = paused;
    gtk_label_set_text(GTK_LABEL(mainwindow->statusLabel), getString("Sharing has been disabled!"));
    showSharingChange(mainwindow);
    encodeButtonClickMessage("stop", g_UiStatus);
}

void resumeSharing(MainWindow *mainwindow)
{
    mainwindow->StartButtonState = sharing;
    UI_INFO_AS("on_start_clicked", " Start Button has been pressed");
    showStatusText(mainwindow, getString("Connecting"));
    showSharingChange(mainwindow);
    encodeButtonClickMessage("start", g_UiStatus);
}

// The two ways to pop a menu up; which of them exists depends on the toolkit at hand.
using PopUp = void (*)(GtkMenu *, GtkWidget *, GtkWidget *, GtkMenuPositionFunc, gpointer, guint, guint32);
using PopUpAtWidget = void (*)(GtkMenu *, GtkWidget *, GdkGravity, GdkGravity, const GdkEvent *);

void popUp(GModule *library, GtkWidget *settingsButton, GtkWidget *menu)
{
    gpointer symbol = nullptr;
    if (g_module_symbol(library, "gtk_menu_popup", &symbol) && symbol)
        reinterpret_cast<PopUp>(symbol)(GTK_MENU(menu), nullptr, nullptr, nullptr, nullptr, 0,
                                        gtk_get_current_event_time());
    else if (g_module_symbol(library, "gtk_menu_popup_at_widget", &symbol) && symbol)
        reinterpret_cast<PopUpAtWidget>(symbol)(GTK_MENU(menu), settingsButton, GDK_GRAVITY_NORTH, GDK_GRAVITY_CENTER,
                                                nullptr);
    else
        UI_INFO_AS("showPopup", "error loading function");
}

/// A menu needs a window to belong to, else Wayland can't place it. Attached to its button it would be hidden from
/// assistive technology.
void tieToWindow(GtkWidget *menu, GtkWidget *button)
{
    GtkWidget *const popup = gtk_widget_get_toplevel(menu);
    GtkWidget *const window = gtk_widget_get_toplevel(button);
    if (GTK_IS_WINDOW(popup) && GTK_IS_WINDOW(window))
        gtk_window_set_transient_for(GTK_WINDOW(popup), GTK_WINDOW(window));
}

} // namespace

void showSharingButton(MainWindow *mainwindow)
{
    makeSharingImages(mainwindow);
    putSharingImage(mainwindow);
    // The first click brings the tooltip; from then on it says what the picture says.
    if (gtk_widget_get_has_tooltip(mainwindow->startStopSharingButton))
        gtk_widget_set_tooltip_text(mainwindow->startStopSharingButton, sharingAction(mainwindow->StartButtonState));
}

void showStatusText(MainWindow *mainwindow, const char *withoutName)
{
    OwnedText name;
    {
        const MutexLock lock(&mainwindow->mutex);
        name.reset(g_strdup(mainwindow->Techname));
    }
    const OwnedText shown = displayable_name(name ? name.get() : withoutName);
    // A label lays out again whatever it is given, which takes its time for an endless name.
    if (g_strcmp0(gtk_label_get_text(GTK_LABEL(mainwindow->statusLabel)), shown.get()) != 0)
        gtk_label_set_text(GTK_LABEL(mainwindow->statusLabel), shown.get());
}

void on_start_clicked(GtkWidget *, MainWindow *mainwindow)
{
    UI_ENTER();
    makeSharingImages(mainwindow);
    switch (mainwindow->StartButtonState) {
    case starting:
        return beginSession(mainwindow);
    case sharing:
        return pauseSharing(mainwindow);
    case paused:
        return resumeSharing(mainwindow);
    default:
        return;
    }
}

void openWebsite(GtkWidget *, MainWindow *)
{
    UI_ENTER();
    encodeButtonClickMessage("settings", g_UiStatus);
}

void showPopup(GtkWidget *settingsButton, GtkWidget *menu)
{
    UI_ENTER();
    GModule *const library = g_module_open("libgtk-3.so.0", G_MODULE_BIND_LAZY);
    if (!library) {
        UI_INFO("error loading module");
        return;
    }
    tieToWindow(menu, settingsButton);
    popUp(library, settingsButton, menu);
    if (!g_module_close(library))
        UI_INFO("error closing module");
}

void onSendFilesClicked(GtkWidget *, MainWindow *mainwindow)
{
    UI_ENTER();
    {
        const MutexLock lock(&mainwindow->mutex);
        replace_text(g_receiverId, toEveryTechnician);
    }
    schedule_on_main(show_file_chooser_dialog, mainwindow);
}

gboolean on_window_main_delete(GtkWidget *, GdkEvent *, MainWindow *mainwindow)
{
    UI_ENTER();
    schedule_on_main(show_dialog_exit, mainwindow);
    return GDK_EVENT_STOP; // the dialog decides; the window stays
}
