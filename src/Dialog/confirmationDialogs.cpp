// The confirmation family. What a question says and what its answers do stands in its row of the table; here is only
// what makes each of them different.

#include "src/Dialog/confirmationDialogs.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogText.h"
#include "src/Dialog/questionDialog.h"
#include "src/IdleThread/participants.h"
#include "src/localizationText.h"

char *g_joinConfirmationMessage = nullptr;
GtkWidget *rebootConfirmationDialog = nullptr;

namespace
{
constexpr guint rebootQuestionMs = 10000;
constexpr int controlLabelMarginPx = 5;
constexpr char recordKey[] = "user-concent";

/// Opens a question whose text and kind stand in its row.
GtkWidget *raise(QuestionId id, MainWindow *mainwindow, void (*handler)(GtkDialog *, int, MainWindow *))
{
    const Question &question = findQuestion(id);
    GtkWidget *dialog = buildQuestion(question, mainwindow, question.text);
    connect_signal(dialog, "response", handler, mainwindow);
    showQuestion(dialog, question, mainwindow, question.kind);
    return dialog;
}

// ------------------------------------------------------------------------------------------------------ join

const char *defaultJoinText(const MainWindow *mainwindow)
{
    if (g_strcmp0(mainwindow->demoSession, "true") == 0)
        return "You are about to join a Screen sharing session";
    return "You are about to join a remote support session. The technician would be able to view and access your "
           "screen.";
}

/// The text to join by: the technician's message, and only without one the program's own. A message with nothing to
/// read in it is no reason to ask for something else; nobody can join by it.
OwnedText joinText(MainWindow *mainwindow)
{
    const OwnedText message = takeText(&mainwindow->mutex, g_joinConfirmationMessage);
    return message ? decodeQuestion(message.get()) : OwnedText(g_strdup(defaultJoinText(mainwindow)));
}

GtkWidget *findLabel(GtkWidget *dialog)
{
    GtkWidget *content = gtk_dialog_get_content_area(GTK_DIALOG(dialog));
    g_autoptr(GList) children = gtk_container_get_children(GTK_CONTAINER(content));
    GtkWidget *child = GTK_WIDGET(children->data);
    while (GTK_IS_BIN(child))
        child = gtk_bin_get_child(GTK_BIN(child));
    return child;
}

void freeConcent(UserConcent *record)
{
    g_free(record->message);
    g_free(record->clientid);
    g_free(record->feature);
    g_free(record);
}

// --------------------------------------------------------------------------------------------------- control

OwnedText controlText(const char *name)
{
    return OwnedText(
        g_strdup_printf(getString("%s has requested to control your device.\n Would you like to accept the request?"),
                        plainName(name).get()));
}

/// The name by which the asking participant is listed, or null where it shows nothing: a name that nobody can see is
/// no better than none.
const char *findVisibleName(const MainWindow *mainwindow, const char *identifier)
{
    const char *name = findParticipantName(mainwindow, identifier);
    if (!name)
        return nullptr;
    UI_INFO_AS("show_dialog_transfer_control_demo", "parse confromation text");
    return hasVisibleText(name) ? name : nullptr;
}

/// The asking participant isn't listed by name: the text that names him stays empty, and the identifier is named under
/// it, so that nobody is asked an empty question.
void addEmptyText(GtkWidget *dialog)
{
    GtkWidget *content = gtk_dialog_get_content_area(GTK_DIALOG(dialog));
    GtkWidget *label = gtk_label_new("");
    gtk_container_add(GTK_CONTAINER(content), label);
    gtk_box_reorder_child(GTK_BOX(content), label, 0);
}
} // namespace

gboolean show_userconfirmation_dialog(MainWindow *mainwindow)
{
    UI_ENTER();
    const Question &question = findQuestion(QuestionId::joinSession);
    if (!claimKind(mainwindow, question.kind, __func__))
        return FALSE;
    const JoinText text = readMarkup(joinText(mainwindow).get());
    GtkWidget *dialog = buildQuestion(question, mainwindow, text.words.get());
    if (text.markup)
        gtk_label_set_markup_with_mnemonic(GTK_LABEL(findLabel(dialog)), text.markup.get());
    connect_signal(dialog, "response", on_response, mainwindow);
    showQuestion(dialog, question, mainwindow, question.kind);
    return FALSE;
}

void on_response(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::joinSession, mainwindow, __func__});
}

gboolean show_dialog_concent(UserConcent *record)
{
    UI_ENTER();
    MainWindow *mainwindow = record->mainwindow;
    if (!claimKind(mainwindow, record->feature, __func__)) {
        freeConcent(record);
        return FALSE;
    }
    record->option = false;
    const Question &question = findQuestion(QuestionId::featureConsent);
    GtkWidget *dialog = buildQuestion(question, mainwindow, decodeQuestion(record->message).get());
    g_object_set_data_full(G_OBJECT(dialog), recordKey, record,
                           [](gpointer owned) { freeConcent(static_cast<UserConcent *>(owned)); });
    GtkWidget *remember = gtk_check_button_new_with_label(getString("Remember this option"));
    connect_signal(remember, "toggled", toggled_cb, record);
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), remember);
    connect_signal(dialog, "response", on_response_concent, record);
    showQuestion(dialog, question, mainwindow, record->feature);
    return FALSE;
}

void toggled_cb(GtkToggleButton *button, UserConcent *record)
{
    UI_ENTER();
    record->option = gtk_toggle_button_get_active(button);
}

void on_response_concent(GtkDialog *dialog, int response, UserConcent *record)
{
    UI_ENTER();
    if (!record) {
        UI_INFO("ITs NUll");
        return;
    }
    if (record->option)
        UI_INFO("Selected rember me");
    const OwnedText argument(
        g_strdup_printf("%s %s %s", record->clientid, record->feature, record->option ? "true" : "false"));
    keepArgument(GTK_WIDGET(dialog), argument.get());
    answerQuestion(dialog, response, {QuestionId::featureConsent, record->mainwindow, __func__});
}

gboolean show_dialog_exit(MainWindow *mainwindow)
{
    UI_ENTER();
    raise(QuestionId::leaveSession, mainwindow, on_response_exit);
    return FALSE;
}

void on_response_exit(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    const Question &question = findQuestion(QuestionId::leaveSession);
    if (response != question.acceptResponse) {
        answerQuestion(dialog, response, {QuestionId::leaveSession, mainwindow, __func__});
        return;
    }
    UI_INFO(" User has Closed Session");
    if (!mainwindow->isConnected && isNormalSession(mainwindow)) {
        UI_TRACE("session is type normal and technician is not connected closing agent");
    } else {
        UI_TRACE("session is connected session message");
        sendAnswer(question.accepted, nullptr);
    }
    gtk_widget_destroy(GTK_WIDGET(dialog));
    request_quit();
}

gboolean show_dialog_service(MainWindow *mainwindow)
{
    UI_ENTER();
    if (isWayland()) {
        UI_INFO("%s", "");
        return ShowUnSupportedDialog(mainwindow);
    }
    if (claimKind(mainwindow, findQuestion(QuestionId::rootAccess).kind, __func__))
        raise(QuestionId::rootAccess, mainwindow, on_response_service);
    return FALSE;
}

void on_response_service(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::rootAccess, mainwindow, __func__});
}

gboolean ShowUnSupportedDialog(MainWindow *mainwindow)
{
    UI_ENTER();
    raise(QuestionId::adminModeUnsupported, mainwindow, on_response_admin_mode_launcher);
    return FALSE;
}

void on_response_admin_mode_launcher(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::adminModeUnsupported, mainwindow, __func__});
}

gboolean show_dialog_script_launcher(ScriptRequest *request)
{
    UI_ENTER();
    MainWindow *mainwindow = request->mainwindow;
    const OwnedText text(request->question);
    const bool isNameless = request->isNameless;
    g_free(request);
    const Question &question = findQuestion(QuestionId::runScript);
    if (!claimKind(mainwindow, question.kind, __func__))
        return FALSE;
    GtkWidget *dialog = buildQuestion(question, mainwindow, text.get());
    // Nobody can agree to a script that nobody can tell from another.
    if (isNameless)
        gtk_dialog_set_response_sensitive(GTK_DIALOG(dialog), question.acceptResponse, FALSE);
    connect_signal(dialog, "response", on_response_script_launcher, mainwindow);
    showQuestion(dialog, question, mainwindow, question.kind);
    return FALSE;
}

void on_response_script_launcher(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::runScript, mainwindow, __func__});
}

gboolean show_ursConfigure_prompt(MainWindow *mainwindow)
{
    UI_ENTER();
    const OwnedText argument = takeText(&mainwindow->mutex, mainwindow->tempFT);
    keepArgument(raise(QuestionId::unattendedAccess, mainwindow, on_response_configure), argument.get());
    return FALSE;
}

void on_response_configure(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::unattendedAccess, mainwindow, __func__});
}

gboolean lock_wayland_dialog(MainWindow *mainwindow)
{
    UI_ENTER();
    UI_INFO("LOCKSCREEN CLOSED"); // the refusal's text, on purpose
    raise(QuestionId::lockScreen, mainwindow, on_response_LockScreenWayland);
    return FALSE;
}

void on_response_LockScreenWayland(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::lockScreen, mainwindow, __func__});
}

gboolean show_dialog_transfer_control_demo(MainWindow *mainwindow)
{
    UI_ENTER();
    OwnedText identifier;
    {
        const MutexLock lock(&mainwindow->mutex);
        identifier.reset(g_strdup(mainwindow->demo_tech_access ? mainwindow->demo_tech_access : ""));
    }
    const char *name = findVisibleName(mainwindow, identifier.get());
    const Question &question = findQuestion(QuestionId::participantControl);
    // Nobody can agree to a control that nobody asks for.
    const bool isNobody = !name && !hasVisibleText(displayable_text(identifier.get()).get());
    const OwnedText text = isNobody ? OwnedText(g_strdup("")) : controlText(name ? name : identifier.get());
    GtkWidget *dialog = buildQuestion(question, mainwindow, text.get());
    g_object_set(findLabel(dialog), "margin", controlLabelMarginPx, nullptr);
    if (!name)
        addEmptyText(dialog);
    keepArgument(dialog, identifier.get());
    // While another question is open, a window manager would put a child of the main window under that one, where it
    // can't be answered and holds the other back.
    if (isOpenWindow(mainwindow->window) && !gtk_grab_get_current())
        gtk_window_set_transient_for(GTK_WINDOW(dialog), GTK_WINDOW(mainwindow->window));
    connect_signal(dialog, "response", on_response_demo, mainwindow);
    showQuestion(dialog, question, mainwindow, nullptr);
    return FALSE;
}

void on_response_demo(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::participantControl, mainwindow, __func__});
    if (response != GTK_RESPONSE_ACCEPT)
        return;
    const MutexLock lock(&mainwindow->mutex);
    replace_text(mainwindow->demo_tech_access, "");
}

gboolean show_rebootConfirmation_dialog(MainWindow *mainwindow)
{
    UI_ENTER();
    if (rebootConfirmationDialog) {
        UI_INFO("dialog box already running");
        return FALSE;
    }
    GtkWidget *dialog = raise(QuestionId::reboot, mainwindow, on_response_rebootConfirmation);
    rebootConfirmationDialog = GTK_WIDGET(g_object_ref(dialog));
    connect_signal(dialog, "destroy", on_destroy_rebootConfirmation, mainwindow);
    closeAfter(dialog, rebootQuestionMs);
    return FALSE;
}

void on_response_rebootConfirmation(GtkDialog *dialog, int response, MainWindow *mainwindow)
{
    UI_ENTER();
    answerQuestion(dialog, response, {QuestionId::reboot, mainwindow, __func__});
}

void on_destroy_rebootConfirmation(GtkWidget *dialog, MainWindow *)
{
    UI_ENTER();
    if (rebootConfirmationDialog != dialog)
        return;
    rebootConfirmationDialog = nullptr;
    g_object_unref(dialog);
}
