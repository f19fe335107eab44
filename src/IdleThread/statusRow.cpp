// The status row follows the agent's reports.

#include "src/IdleThread/statusRow.h"

#include "Logger/logger.h"
#include "src/IdleThread/infoBar.h"
#include "src/Utils/panels.h"
#include "src/controls.h"
#include "src/support.h"

namespace
{

constexpr char inSession[] = "In Session";                        // shown as it is in every language
constexpr char connectionDown[] = "Connection down. Retrying..."; // shown as it is in every language

void showRoleButton(GtkWidget *button, bool allowed)
{
    gtk_widget_set_visible(button, allowed);
}

gboolean showRoleButtons(MainWindow *mainwindow)
{
    showRoleButton(mainwindow->chat->button, mainwindow->isChatAllowed);
    showRoleButton(mainwindow->annotation->button, mainwindow->isAnnotationAllowed);
    showRoleButton(mainwindow->fileTransfer->button, mainwindow->isFileTransferAllowed);
    return G_SOURCE_REMOVE;
}

/// The focus that the start/stop button lost while it waited, insensitive, for the agent comes back, unless the
/// customer has gone on to another control.
void returnFocus(MainWindow *mainwindow)
{
    auto *const window = GTK_WINDOW(mainwindow->window);
    if (mainwindow->sharingButtonHadFocus && !gtk_window_get_focus(window))
        gtk_widget_grab_focus(mainwindow->startStopSharingButton);
    mainwindow->sharingButtonHadFocus = false;
}

void enterState(MainWindow *mainwindow, int state)
{
    customeRolesHandling(mainwindow);
    gtk_widget_set_sensitive(mainwindow->startStopSharingButton, TRUE);
    returnFocus(mainwindow);
    if (mainwindow->StartButtonState == state)
        return; // the button shows it already
    mainwindow->StartButtonState = state;
    showSharingButton(mainwindow);
}

} // namespace

gboolean ButtonChangeStart(MainWindow *mainwindow)
{
    UI_ENTER();
    showStatusText(mainwindow, inSession);
    setImageFromFile(mainwindow->statusIcon, mainwindow->imageOnline);
    enterState(mainwindow, sharing);
    UI_INFO("button state %d", mainwindow->StartButtonState);
    return G_SOURCE_REMOVE;
}

gboolean ButtonChangeStop(MainWindow *mainwindow)
{
    UI_ENTER();
    setImageFromFile(mainwindow->statusIcon, mainwindow->imageOffline);
    enterState(mainwindow, paused);
    UI_INFO("button state %d", mainwindow->StartButtonState);
    return G_SOURCE_REMOVE;
}

gboolean noInternet(MainWindow *mainwindow)
{
    UI_ENTER();
    setImageFromFile(mainwindow->statusIcon, mainwindow->imageOffline);
    InfoBar *const infoBar = mainwindow->infoBarStruct;
    // Only the label: the notice is seen only while the bar itself is there.
    gtk_label_set_text(GTK_LABEL(infoBar->infoBarLabel), connectionDown);
    gtk_widget_show(infoBar->infoBarLabel);
    hideInfoBarLater(infoBar);
    return G_SOURCE_REMOVE;
}

gboolean Reconnected(MainWindow *mainwindow)
{
    UI_ENTER();
    setImageFromFile(mainwindow->statusIcon, mainwindow->imageOnline);
    return G_SOURCE_REMOVE;
}

int customeRolesHandling(MainWindow *mainwindow)
{
    UI_ENTER();
    run_on_main(showRoleButtons, mainwindow);
    return 0;
}
