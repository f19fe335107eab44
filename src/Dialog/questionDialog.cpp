// From a row of the table to a dialog, and from a response to the lines for the agent.

#include "src/Dialog/questionDialog.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogInternal.h"
#include "src/Dialog/dialogShape.h"
#include "src/Utils/dialogPlacement.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/localizationText.h"

namespace
{
/// The dialog's data: its kind in the registry, and what the question is about; owned by the dialog, may be null.
constexpr char kindKey[] = "question-kind";
constexpr char argumentKey[] = "question-argument";

bool has(const Question &question, Trait trait)
{
    return (question.traits & trait) != 0;
}

const char *titleOf(const Question &question, const MainWindow *mainwindow)
{
    switch (question.title) {
    case Title::product:
        return g_productName;
    case Title::productWindow:
        return mainwindow->productWindowTitle;
    case Title::fixed:
        break;
    }
    return question.titleText;
}

const char *labelOf(const Question &question, const char *label)
{
    return has(question, translatesLabels) ? getString(label) : label;
}

GtkWidget *buildByHand(const Question &question, const MainWindow *mainwindow, const char *text)
{
    GtkWidget *dialog = newQuestionWindow(titleOf(question, mainwindow));
    addAcceptAnswer(dialog, labelOf(question, question.acceptLabel), question.acceptResponse);
    if (question.rejectLabel)
        addAnswer(dialog, labelOf(question, question.rejectLabel), GTK_RESPONSE_REJECT);
    addQuestionLabel(dialog, has(question, textIsFinished) ? text : getString(text), question.acceptResponse);
    gtk_window_set_resizable(GTK_WINDOW(dialog), has(question, resizable));
    return dialog;
}

/// A note that is only read.
bool grantsNothing(const Question &question)
{
    return question.accepted.line == Line::none;
}

OwnedText copyOfData(GtkDialog *dialog, const char *key)
{
    return OwnedText(g_strdup(static_cast<const char *>(g_object_get_data(G_OBJECT(dialog), key))));
}

void logAnswer(const Question &question, int response, const char *handler)
{
    const Answer &answer = response == question.acceptResponse ? question.accepted : question.refused;
    const bool isSilent =
        has(question, logsOnlyPressedRefusal) && response != question.acceptResponse && response != GTK_RESPONSE_REJECT;
    if (answer.log && !isSilent)
        UI_INFO_AS(handler, "%s", answer.log);
}

/// The answer's line and log text, in the row's order.
void tellAnswer(const Question &question, int response, const char *argument, const char *handler)
{
    if (has(question, logsBeforeSending))
        logAnswer(question, response, handler);
    sendAnswer(response == question.acceptResponse ? question.accepted : question.refused, argument);
    if (!has(question, logsBeforeSending))
        logAnswer(question, response, handler);
}

void unlist(MainWindow *mainwindow, const char *kind)
{
    if (kind)
        delete_active_dialog(mainwindow->active_dialogs, &mainwindow->mutex, kind);
}
} // namespace

bool claimKind(MainWindow *mainwindow, const char *kind, const char *function)
{
    if (add_active_dialog(mainwindow->active_dialogs, &mainwindow->mutex, kind))
        return true;
    UI_INFO_AS(function, "window already active");
    return false;
}

GtkWidget *buildQuestion(const Question &question, MainWindow *mainwindow, const char *text)
{
    GtkWidget *dialog =
        has(question, textIsFinished) || !question.rejectLabel
            ? buildByHand(question, mainwindow, text)
            : custom_dialog(titleOf(question, mainwindow), question.acceptLabel, question.rejectLabel, text);
    gtk_window_set_default_size(GTK_WINDOW(dialog), question.widthPx, -1);
    return dialog;
}

void keepArgument(GtkWidget *dialog, const char *argument)
{
    g_object_set_data_full(G_OBJECT(dialog), argumentKey, g_strdup(argument), g_free);
}

void showQuestion(GtkWidget *dialog, const Question &question, MainWindow *mainwindow, const char *kind)
{
    g_object_set_data_full(G_OBJECT(dialog), kindKey, g_strdup(kind), g_free);
    centreDialog(dialog);
    if (has(question, listensToStructure))
        listenToStructure(mainwindow);
    if (has(question, guarded))
        guardFromKeyboard(dialog, mainwindow);
    if (has(question, reportsPosition))
        reportPosition(dialog, kind);
    if (has(question, askedByCustomer))
        gtk_widget_show_all(dialog);
    else
        showOnRefusal(dialog, grantsNothing(question) ? question.acceptResponse : GTK_RESPONSE_REJECT);
    if (has(question, presentsItself))
        gtk_window_present(GTK_WINDOW(dialog));
}

void sendAnswer(const Answer &answer, const char *argument)
{
    const OwnedText text(answer.addsArgument ? g_strdup_printf("%s %s", answer.text, argument ? argument : "")
                                             : g_strdup(answer.text));
    if (answer.line == Line::dialogResponse)
        encodeDialogeResponseMessage(text.get(), g_UiStatus);
    if (answer.line == Line::buttonClick)
        encodeButtonClickMessage(text.get(), g_UiStatus);
}

void answerQuestion(GtkDialog *dialog, int response, const Reply &reply)
{
    const Question &question = findQuestion(reply.id);
    // The dialog may go before its answer is out.
    const OwnedText kind = copyOfData(dialog, kindKey);
    const OwnedText argument = copyOfData(dialog, argumentKey);
    if (has(question, endsControlRequest))
        reply.mainwindow->dialogChecker = false;
    if (has(question, unlistedBeforeAnswer))
        unlist(reply.mainwindow, kind.get());
    if (has(question, closesBeforeSending))
        gtk_widget_destroy(GTK_WIDGET(dialog));
    tellAnswer(question, response, argument.get(), reply.handler);
    if (!has(question, closesBeforeSending))
        gtk_widget_destroy(GTK_WIDGET(dialog));
    if (!has(question, unlistedBeforeAnswer))
        unlist(reply.mainwindow, kind.get());
    if (has(question, refusalEndsProgram) && response != question.acceptResponse)
        request_quit();
}
