// All panels, and every question one after the other.

#include "tests/ui/main/everyQuestion.h"

#include "src/Dialog/clipboardDialog.h"
#include "src/Dialog/dialog.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Utils/Utils.h"
#include "src/support.h"

namespace
{

/// A line of the agent and the text that is then asked.
struct Prompted {
    const char *words;
    const char *key;
};
constexpr Prompted prompts[] = {
    {"userConcent TWF5IEk/ client9 camera", "Remember this option"},
    {"runAsService", " Your technician has requested for a root-level \n access of your computer. Would you like to "
                     "accept  \n the request?"},
    {"configureURS ref/7", " Would you like the Technician to configure this \n device for Unattended Access?"},
    {"lockuser", "Lock screen under wayland will terminate the Session.\n Are you sure want to lock the screen?"},
    {"command p7", "%s has requested to control your device.\n Would you like to accept the request?"},
    {"rebootPc", "Technician wants to reboot your computer. Click\n\"Yes\" to reboot."},
    {"acall", "Would you like to accept your technician's voice/ \nvideo chat invite?                                "},
    {"vcall", "Would you like to accept your technician's voice/ \nvideo chat invite?                                "},
    {"launchScript a.sh", nullptr},
    {"samecon Sm9pbiB1cz8=", nullptr},
    {"initswap Bob", " Requesting %s to share screen          "},
    {"fileTransferReceive notes.txt", "Change Path"},
};

GtkWidget *findDialog()
{
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    for (const GList *each = windows; each; each = each->next)
        if (GTK_IS_DIALOG(each->data) && gtk_widget_get_visible(GTK_WIDGET(each->data)))
            return GTK_WIDGET(each->data);
    return nullptr;
}

} // namespace

GtkWidget *EveryQuestion::awaitAnyDialog()
{
    GtkWidget *dialog = nullptr;
    EXPECT_TRUE(waitUntil([&] { return (dialog = findDialog()) != nullptr; }));
    return dialog;
}

void EveryQuestion::SetUp()
{
    DialogSession::SetUp();
    replace_text(mainWindow->Techname, customer.c_str());
}

void EveryQuestion::openPanels()
{
    expandParticipantsWidget(nullptr, mainWindow);
    expandWidget(nullptr, mainWindow);
    expandFileTransfer(nullptr, mainWindow);
    gtk_widget_show_all(mainWindow->annotation->contentArea);
    addParticipant(customer, "p7");
}

void EveryQuestion::eachQuestion(const std::function<void(GtkWidget *, const char *)> &look)
{
    const auto expectQuestion = [&](const char *name, const char *key) {
        SCOPED_TRACE(name);
        GtkWidget *const dialog = awaitAnyDialog();
        ASSERT_TRUE(dialog);
        keepOpen(dialog);
        look(dialog, key);
        gtk_widget_destroy(dialog);
        drainMainLoop();
    };
    addParticipant(customer, "p7");
    for (const Prompted &question : prompts) {
        prompt(question.words);
        expectQuestion(question.words, question.key);
    }
    show_dialog_exit(mainWindow);
    expectQuestion("exit", "Do you want to leave this Session?                              ");
    ShowUnSupportedDialog(mainWindow);
    expectQuestion("admin mode", "Admin mode is not supported under wayland");
    show_clipboardPermission_dialog(mainWindow, "copied");
    expectQuestion("clipboard", "Do you want your Technician to access your system Clipboard");
}
