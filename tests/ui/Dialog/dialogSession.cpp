// A session in which the agent prompts and the customer answers.

#include "tests/ui/Dialog/dialogSession.h"

#include "src/Dialog/dialog.h"
#include "src/Dialog/dialogInternal.h"
#include "src/IdleThread/participants.h"
#include "src/Protocol/messageHandler.h"
#include "src/Utils/pipeTransport.h"

#include <thread>

namespace
{

constexpr char positionStart[] = "dialogResponse dialog_position ";

bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

} // namespace

void DialogSession::SetUp()
{
    WindowSession::SetUp();
    g_setenv("XDG_SESSION_TYPE", "x11", TRUE);
}

void DialogSession::TearDown()
{
    settle();
    WindowSession::TearDown();
}

void DialogSession::prompt(const std::string &words)
{
    std::thread([&] { handleDialogPromptMessage(g_strdup(("dialogPrompt " + words).c_str()), mainWindow); }).join();
}

void DialogSession::reportSwap(const std::string &words)
{
    std::thread([&] { handleSwapScreenMessage(g_strdup(("initSwap " + words).c_str()), mainWindow); }).join();
}

void DialogSession::addParticipant(const std::string &name, const std::string &identifier)
{
    {
        const MutexLock lock(&mainWindow->mutex);
        replace_text(mainWindow->participants->Data, name.c_str());
        replace_text(mainWindow->participants->identifier, identifier.c_str());
    }
    AddParticipants(mainWindow);
}

GtkWidget *DialogSession::awaitDialog(const std::string &title)
{
    EXPECT_TRUE(waitUntil([&] { return !findWindows(title).empty(); })) << title;
    const std::vector<GtkWidget *> found = findWindows(title);
    return found.empty() ? nullptr : found.back();
}

std::vector<GtkWidget *> DialogSession::dialogs()
{
    drainMainLoop();
    std::vector<GtkWidget *> found;
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    for (const GList *each = windows; each; each = each->next)
        if (GTK_IS_DIALOG(each->data) && gtk_widget_get_visible(GTK_WIDGET(each->data)))
            found.push_back(GTK_WIDGET(each->data));
    return found;
}

GtkWidget *DialogSession::open(const std::string &words)
{
    prompt(words);
    const std::vector<GtkWidget *> found = dialogs();
    EXPECT_EQ(found.size(), 1U) << words;
    return found.empty() ? nullptr : found.front();
}

GtkWidget *DialogSession::raise(const std::string &words, const std::string &title)
{
    prompt(words);
    return awaitDialog(title);
}

void DialogSession::settle()
{
    static int count = 0;
    const std::string mark = "settled " + std::to_string(++count);
    drainMainLoop();
    pipewriter(g_UiStatus, (mark + "\n").c_str());
    EXPECT_TRUE(waitUntil([&] {
        const std::vector<std::string> lines = agent->lines();
        return std::find(lines.begin(), lines.end(), mark) != lines.end();
    }));
}

void DialogSession::forgetLines()
{
    settle();
    agent->forget();
}

std::vector<std::string> DialogSession::answers()
{
    settle();
    std::vector<std::string> found;
    for (const std::string &line : agent->lines())
        if (!startsWith(line, positionStart) && !startsWith(line, "settled "))
            found.push_back(line);
    return found;
}

std::vector<std::string> DialogSession::reportedKinds()
{
    settle();
    std::vector<std::string> kinds;
    for (const std::string &line : agent->lines()) {
        if (!startsWith(line, positionStart))
            continue;
        const std::string rest = line.substr(strlen(positionStart));
        kinds.push_back(rest.substr(0, rest.find(' ')));
    }
    return kinds;
}

std::vector<std::string> DialogSession::openKinds() const
{
    const MutexLock lock(&mainWindow->mutex);
    std::vector<std::string> kinds;
    for (const GList *each = mainWindow->active_dialogs->next; each; each = each->next)
        kinds.emplace_back(static_cast<const char *>(each->data));
    return kinds;
}

std::string textOf(GtkWidget *dialog)
{
    return shownText(findByName(dialog, "dialogboxlabel"));
}

void answer(GtkWidget *dialog, int response)
{
    gtk_dialog_response(GTK_DIALOG(dialog), response);
}

void closeByFrame(GtkWidget *dialog)
{
    gtk_window_close(GTK_WINDOW(dialog));
    drainMainLoop();
}

namespace
{

GSource *timerOf(GtkWidget *dialog)
{
    const guint id = GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(dialog), closingTimerKey));
    return id ? g_main_context_find_source_by_id(nullptr, id) : nullptr;
}

} // namespace

bool elapse(GtkWidget *dialog)
{
    GSource *const timer = timerOf(dialog);
    if (!timer)
        return false;
    g_source_set_ready_time(timer, 0);
    drainMainLoop();
    return true;
}

double remainingMs(GtkWidget *dialog)
{
    GSource *const timer = timerOf(dialog);
    return timer ? double(g_source_get_ready_time(timer) - g_get_monotonic_time()) / 1000 : -1;
}

std::string encoded(const std::string &text)
{
    g_autofree char *base64 = g_base64_encode(reinterpret_cast<const guchar *>(text.data()), text.size());
    return base64;
}
