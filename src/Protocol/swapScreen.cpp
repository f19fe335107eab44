// The outcome of the customer's request to see the technician's screen. The waiting dialog is looked for when the main
// loop gets there: the customer may have closed it meanwhile.

#include "src/Protocol/messageHandler.h"

#include "Logger/logger.h"
#include "src/Dialog/swapDialog.h"
#include "src/IdleThread/infoBar.h"
#include "src/localizationText.h"
#include "src/support.h"

namespace
{
constexpr char swapHandler[] = "handleSwapScreenMessage";

gboolean endWaiting(MainWindow *)
{
    closeSwapDialog();
    return G_SOURCE_REMOVE;
}

/// The technician's screen takes the place of this one: the window goes, the program stays.
gboolean destroyMainWindow(MainWindow *mainwindow)
{
    gtk_widget_destroy(mainwindow->window);
    return G_SOURCE_REMOVE;
}

gboolean showRejected(MainWindow *mainwindow)
{
    startInfoBar(mainwindow->infoBarStruct, getString("Technician has rejected screen sharing request."));
    return G_SOURCE_REMOVE;
}

gboolean showTooManyUsers(MainWindow *mainwindow)
{
    startInfoBar(mainwindow->infoBarStruct,
                 getString("Swap screen cannot be initiated as there is more than one technician"));
    return G_SOURCE_REMOVE;
}

void handleApproved(MainWindow *mainwindow)
{
    UI_INFO_AS(swapHandler, " Swap Screen has been approved");
    run_on_main(endWaiting, mainwindow);
    run_on_main(destroyMainWindow, mainwindow);
}

void handleRejected(MainWindow *mainwindow)
{
    UI_INFO_AS(swapHandler, " Swap Screen has been Rejected");
    run_on_main(endWaiting, mainwindow);
    run_on_main(showRejected, mainwindow);
}

void handleTooManyUsers(MainWindow *mainwindow)
{
    UI_INFO_AS(swapHandler, "swap screen not support in demo");
    run_on_main(showTooManyUsers, mainwindow);
}

struct Outcome {
    const char *word; ///< letter case ignored
    void (*handle)(MainWindow *mainwindow);
};

constexpr Outcome outcomes[] = {
    {"approved", handleApproved},
    {"swapRejected", handleRejected},
    {"toManyUsers", handleTooManyUsers},
};
} // namespace

gboolean handleSwapScreenMessage(char *message, MainWindow *mainwindow)
{
    UI_ENTER();
    const OwnedText line(message);
    const OwnedTexts fields(g_strsplit(line.get(), " ", -1));
    const char *word = piece_or_empty(fields.get(), 1);
    for (const Outcome &outcome : outcomes)
        if (g_ascii_strcasecmp(word, outcome.word) == 0) {
            outcome.handle(mainwindow);
            return FALSE;
        }
    UI_INFO("unhandled message %s", line.get());
    return FALSE;
}
