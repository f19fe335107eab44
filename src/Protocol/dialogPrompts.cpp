// The technician asks: one row for each word after "dialogPrompt". A handler runs on the parser's thread; it logs, and
// hands what came with the prompt to the main loop, where the value is put where its dialog looks for it and the
// dialog is shown. So each dialog gets the value of its own prompt, however many prompts come in one text.

#include "src/Protocol/messageHandler.h"

#include "Logger/logger.h"
#include "src/Dialog/dialog.h"
#include "src/Dialog/dialogText.h"
#include "src/IdleThread/callInvitations.h"
#include "src/IdleThread/widgetCallbacks.h"
#include "src/Utils/dialogPlacement.h"
#include "src/support.h"

namespace
{
constexpr char handlerName[] = "handleDialogPromptMessage";

/// A prompt in the hands of its handler; gone when the handler returns.
struct Prompt {
    MainWindow *mainwindow;
    const char *line;
    char *const *fields;

    /// The first argument, empty when there is none.
    const char *argument() const { return piece_or_empty(fields, 2); }
};

/// A value on its way to a dialog.
struct Delivery {
    MainWindow *mainwindow;
    char **mailbox; ///< under `MainWindow.mutex`; owns its text
    char *value;    ///< owned, null unsets the mailbox
    gboolean (*show)(MainWindow *mainwindow);
};

gboolean deliver(Delivery *record)
{
    const Delivery delivery = *record;
    g_free(record); // a file chooser stays open for long
    {
        const MutexLock lock(&delivery.mainwindow->mutex);
        g_free(*delivery.mailbox);
        *delivery.mailbox = delivery.value;
    }
    delivery.show(delivery.mainwindow);
    return G_SOURCE_REMOVE;
}

/// Has a value put into its mailbox and the dialog shown that takes it from there. @param value copied; may be null.
void showWith(const Prompt &prompt, char *&mailbox, const char *value, gboolean (*show)(MainWindow *))
{
    auto *delivery = g_new(Delivery, 1);
    *delivery = {prompt.mainwindow, &mailbox, g_strdup(value), show};
    run_on_main(deliver, delivery);
}

void showService(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Technician has requset to run as service");
    run_on_main(show_dialog_service, prompt.mainwindow);
}

void showScriptLauncher(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Prompt script launcher dialog");
    const bool hasName = g_strv_length(const_cast<char **>(prompt.fields)) > 2;
    const OwnedText name = hasName ? plainName(prompt.argument()) : OwnedText(g_strdup("(null)"));
    auto *request = g_new(ScriptRequest, 1);
    *request = {prompt.mainwindow,
                g_strdup_printf("The technician is trying to execute the script \"%s\" on your computer.\n"
                                "Clicking on Allow will execute the script on your device.\n\n"
                                "Note : Proceed with this action only if you trust the technician.",
                                name.get()),
                !hasVisibleText(name.get())};
    run_on_main(show_dialog_script_launcher, request);
}

char *takeField(const Prompt &prompt, guint index)
{
    const char *value = piece_or_empty(prompt.fields, index);
    if (index < g_strv_length(const_cast<char **>(prompt.fields)))
        UI_INFO_AS(handlerName, "%s", value);
    return g_strdup(value);
}

void showConcent(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Prompt user concent dialog");
    auto *record = g_new0(UserConcent, 1);
    record->mainwindow = prompt.mainwindow;
    record->message = takeField(prompt, 2);
    record->clientid = takeField(prompt, 3);
    record->feature = takeField(prompt, 4);
    UI_INFO_AS(handlerName, "Received User Concent");
    run_on_main(show_dialog_concent, record);
}

bool isOpen(const Prompt &prompt, const char *kind)
{
    return is_dialog_active(prompt.mainwindow->active_dialogs, &prompt.mainwindow->mutex, kind);
}

void showJoinQuestion(const Prompt &prompt)
{
    if (isOpen(prompt, "samecon"))
        return;
    UI_INFO_AS(handlerName, "Prompt confirmation dialog");
    const bool hasMessage = g_strv_length(const_cast<char **>(prompt.fields)) == 3;
    showWith(prompt, g_joinConfirmationMessage, hasMessage ? prompt.argument() : nullptr, show_userconfirmation_dialog);
}

void showSwap(const Prompt &prompt)
{
    if (isOpen(prompt, "initswap"))
        return;
    UI_INFO_AS(handlerName, "Prompt swap dialog");
    showWith(prompt, swapTechnicianName, prompt.argument(), show_swapscreen_dialog);
}

void showFileChooser(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Prompt FT dialog %s", prompt.argument());
    showWith(prompt, g_receiverId, prompt.argument(), show_file_chooser_dialog);
}

void showControlQuestion(const Prompt &prompt)
{
    if (prompt.mainwindow->dialogChecker.exchange(true))
        return;
    UI_INFO_AS(handlerName, "Starting DialogDemo");
    showWith(prompt, prompt.mainwindow->demo_tech_access, prompt.argument(), show_dialog_transfer_control_demo);
}

void showOffer(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "receive files %s", prompt.line);
    showWith(prompt, prompt.mainwindow->tempFT, prompt.line, show_dialog_filetransfer);
}

gboolean closeCall(MainWindow *)
{
    if (audioVideoDialog) {
        log_print(levelTrace, __LINE__, handlerName, "Closing AV dialog box ");
        closeCallDialog();
    }
    return G_SOURCE_REMOVE;
}

void showVoiceCall(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Technician has requset to start audio call");
    run_on_main(closeCall, prompt.mainwindow);
    run_on_main(ShowAudioConfirmationDialog, prompt.mainwindow);
}

void showVideoCall(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Technician has requset to start video service");
    run_on_main(closeCall, prompt.mainwindow);
    run_on_main(ShowVideoConfirmationDialog, prompt.mainwindow);
}

void cancelCall(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Audio viode call got cancelled");
    run_on_main(closeCall, prompt.mainwindow);
}

void showReboot(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Prompting reboot dialog box");
    run_on_main(show_rebootConfirmation_dialog, prompt.mainwindow);
}

void showUnattendedAccess(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Prompting urs configure dialog box");
    showWith(prompt, prompt.mainwindow->tempFT, prompt.argument(), show_ursConfigure_prompt);
}

void showLockScreen(const Prompt &prompt)
{
    UI_INFO_AS(handlerName, "Technician has requset to run as service"); // as for "runAsService", on purpose
    run_on_main(lock_wayland_dialog, prompt.mainwindow);
}

struct PromptRow {
    const char *word; ///< letter case ignored
    void (*handle)(const Prompt &prompt);
};

constexpr PromptRow promptRows[] = {
    {"runAsService", showService},
    {"launchScript", showScriptLauncher},
    {"userConcent", showConcent},
    {"samecon", showJoinQuestion},
    {"initswap", showSwap},
    {"fileTransfer", showFileChooser},
    {"command", showControlQuestion},
    {"fileTransferReceive", showOffer},
    {"acall", showVoiceCall},
    {"vcall", showVideoCall},
    {"cancelavcall", cancelCall},
    {"rebootPc", showReboot},
    {"configureURS", showUnattendedAccess},
    {"lockuser", showLockScreen},
};
} // namespace

gboolean handleDialogPromptMessage(char *message, MainWindow *mainwindow)
{
    UI_ENTER();
    const OwnedText line(message);
    UI_INFO("%ss", line.get());
    const OwnedTexts fields(g_strsplit(line.get(), " ", -1));
    const char *word = piece_or_empty(fields.get(), 1);
    for (const PromptRow &row : promptRows)
        if (g_ascii_strcasecmp(word, row.word) == 0) {
            row.handle({mainwindow, line.get(), fields.get()});
            return FALSE;
        }
    return FALSE;
}
