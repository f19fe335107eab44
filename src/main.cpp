// The life of the process, as two lists of steps: start-up and shut-down. Between them runs the main loop.

#include "src/main.h"

#include "Logger/logger.h"
#include "src/Annotation/annotation.h"
#include "src/Chat/chat.h"
#include "src/Utils/Utils.h"
#include "src/agentLauncher.h"
#include "src/controls.h"
#include "src/desktopEntry.h"
#include "src/localizationText.h"
#include "src/lostDisplay.h"
#include "src/sessionState.h"
#include "src/singleInstance.h"
#include "src/support.h"
#include "src/thread/thread.h"

#include <X11/Xlib.h>

#include <malloc.h>

#include <csignal>

namespace
{

constexpr char desktopEntryName[] = "Brindle";
constexpr gint64 startDelayUs = 4 * gint64(G_USEC_PER_SEC);
constexpr gint64 startDelayStepUs = startDelayUs / 40;
constexpr int bigBlockBytes = 128 * 1024; // the allocator's own first threshold
constexpr gulong shutDownPauseUs = 100000;
constexpr int fromRightPx = 200;
constexpr int fromBottomPx = 50;

/// What the steps share.
struct Session {
    MainWindow *mainWindow;
    ChatWindow *chatWindow;
    GApplication *application;
    ThreadData threadData;
    GThread *workers[3]; ///< reader, chat, dispatcher
    GThread *watcher;    ///< the starter in a "normal" session, the liveness check in every other
};

// Threads that are not joined may look at the records to the very end, so these are found from here and never freed.
// Written by main alone.
Session session;

bool isEmpty(const char *text)
{
    return !text || !*text;
}

bool isNormal()
{
    return g_strcmp0(session.mainWindow->urs, "normal") == 0;
}

// ------------------------------------------------------------------------------------------------------------- traces

void closeAnnotationProgram()
{
    if (!isAnnotationAlive)
        return;
    UI_INFO_AS("main", "closing annotation since it is open");
    AnnotationPipeWriter(session.mainWindow->annotation->pipePath, "Exit");
}

/// Needs nothing of the toolkit: when the display has gone, only the log and the file system are left.
void removeTraces()
{
    UI_DEBUG("unlinking pipes");
    if (isNormal())
        unlinkPipes();
    delete_desktop_file(desktopEntryName, session.mainWindow);
}

// ---------------------------------------------------------------------------------------------------------- start-up

void prepareProcess()
{
    // A child or an agent that goes away early costs one logged message; a child's end is always reported.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGCHLD, SIG_DFL);
    // Big texts come and go; without a fixed threshold the allocator keeps the room of the largest.
    mallopt(M_MMAP_THRESHOLD, bigBlockBytes);
    holdBackSigterm();
    adopt_main_thread();
}

void readOptions(int argc, char **argv)
{
    MainWindow *const window = session.mainWindow;
    initializeVariables(window);
    argumentParser(argc, argv, window);
    set_log_path(window->urs, window);
    if (isEmpty(window->urs) || isNormal())
        releaseSigterm();
    else
        watchStart();
    create_desktop_file(desktopEntryName, window);
}

/// Body of "Brindle-end".
gpointer awaitEnd(gpointer)
{
    leave_hung_program();
    return nullptr;
}

/// Sees to it that a program that was asked to end does so. Without a thread the display has to answer for that.
void watchEnd()
{
    if (GThread *const thread = g_thread_try_new("Brindle-end", awaitEnd, nullptr, nullptr))
        g_thread_unref(thread);
}

/// What may have to wait for the desktop. @return false when another companion runs
bool reachDesktop(int argc, char **argv)
{
    XInitThreads();
    readOptions(argc, argv);
    gtk_init(&argc, &argv);
    session.mainWindow->clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    if (!registerOnlyInstance(&session.application))
        return false;
    before_leaving(removeTraces, closeAnnotationProgram);
    on_quit_request(watchEnd);
    watch_display();
    noteDesktopReached();
    return true;
}

void openLogAndChannel()
{
    MainWindow *const window = session.mainWindow;
    if (isEmpty(window->urs))
        window->urs = "normal";
    session.chatWindow->sessionType = window->urs;
    set_log_path(window->urs, window);
    UI_INFO_AS("main", "%s",
               "*----------------------------------------Application start-----------------------------------------"
               "----------------*");
    set_pipe_path(window->urs, window);
    createQueues();
    if (isEmpty(window->email))
        window->email = "Guest";
}

void loadTexts(const char *localeDirectory)
{
    session.chatWindow->settingsJsonPath = g_strdup(session.mainWindow->settingsJsonPath);
    UI_INFO_AS("main", "loading resources");
    if (!loadResource(localeDirectory))
        UI_INFO_AS("main", "error loading resource");
}

void buildWindow()
{
    MainWindow *const window = session.mainWindow;
    createMainWindow(window, session.chatWindow);
    const Size screen = readScreenSize();
    gtk_window_move(GTK_WINDOW(window->window), screen.width - fromRightPx, screen.height - fromBottomPx);
    gtk_button_set_image(GTK_BUTTON(window->settingsButton), window->settingsButtonImage);
    UI_INFO_AS("main", "GTK initilized");
}

void gtkCssParsingError(GtkCssProvider *, GtkCssSection *, GError *error, MainWindow *)
{
    UI_ENTER();
    UI_INFO("error parsing css %s ", error->message);
}

void loadStyle(const char *cssPath)
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    connect_signal(provider, "parsing-error", gtkCssParsingError, session.mainWindow);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_autoptr(GError) error = nullptr;
    if (!gtk_css_provider_load_from_path(provider, cssPath, &error))
        UI_DEBUG("error loding css %s", error->message);
    UI_INFO_AS("main", "css styling has been added");
}

void closePanels()
{
    const MainWindow *const window = session.mainWindow;
    GtkWidget *const closed[] = {
        window->participants->contentArea, window->chat->contentArea,       window->annotation->contentArea,
        window->fileTransfer->contentArea, window->infoBarStruct->infoBar,  window->fileTransfer->textBar,
        window->participants->seperator,   window->fileTransfer->seperator,
    };
    for (GtkWidget *const widget : closed)
        gtk_widget_hide(widget);
}

// The panels are closed before the window first shows: a window manager would place it by the height it has then, and
// the customer would see it shrink.
void showWindow()
{
    const MainWindow *const window = session.mainWindow;
    gtk_widget_show_all(gtk_bin_get_child(GTK_BIN(window->window)));
    closePanels();
    gtk_widget_hide(window->onDemandScreenSharingImage);
    gtk_widget_show(window->window);
    if (isWayland())
        gtk_widget_hide(window->annotation->button);
}

GtkWidget *newSettingsMenu()
{
    GtkWidget *const menu = keep_widget(gtk_menu_new());
    GtkWidget *const item = gtk_menu_item_new_with_label(getString("Go to Website"));
    gtk_widget_show(item);
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    connect_signal(item, "activate", openWebsite, session.mainWindow);
    return menu;
}

void connectControls(GtkWidget *settingsMenu)
{
    MainWindow *const window = session.mainWindow;
    connect_signal(window->participants->button, "clicked", expandParticipantsWidget, window);
    connect_signal(window->chat->button, "clicked", expandWidget, window);
    connect_signal(window->annotation->button, "clicked", on_annotation_clicked, window);
    connect_signal(window->fileTransfer->button, "clicked", expandFileTransfer, window);
    connect_signal(window->startStopSharingButton, "clicked", on_start_clicked, window);
    connect_signal(window->settingsButton, "clicked", showPopup, settingsMenu);
    connect_signal(window->window, "delete-event", on_window_main_delete, window);
    connect_nested_click(window->chatExpander->rightButton, SaveChatTranscript, session.chatWindow);
}

void startThreads()
{
    session.threadData = {session.mainWindow, session.chatWindow, session.mainWindow->clipboard};
    session.workers[0] = g_thread_new("Brindle-checkI", infiniteChecker, nullptr);
    session.workers[1] = g_thread_new("Brindle-checkC", ChatParserfunc, session.chatWindow);
    session.workers[2] = g_thread_new("Brindle-parseMessage", messageParser, &session.threadData);
    UI_INFO_AS("main", "Threads created");
}

void beginNormalSession()
{
    UI_INFO_AS("main", "normal session");
    session.watcher = g_thread_new("Brindle-Starter", AgentStarter, session.mainWindow);
    on_start_clicked(session.mainWindow->startStopSharingButton, session.mainWindow);
}

void beginStartedSession()
{
    MainWindow *const window = session.mainWindow;
    gtk_widget_hide(window->settingsButton);
    UI_INFO_AS("main", "session is of Type %s ", window->urs);
    if (handle_on_Parent_kill())
        UI_INFO_AS("main", "registerd for parent kill signal");
    else
        UI_INFO_AS("main", "error registering for parent kill signal");
    window->StartButtonState = sharing;
    // First, as a parent that died before this program was its child can't be watched: nobody would read the line.
    session.watcher = g_thread_new("Brindle-UI-checker", watchAgent, window);
    pipewriter(g_UiStatus, "SendSessionDetails\n");
    noteFirstLineRead();
}

/// Theme and fonts are read with the first window: here, while there is time.
void warmToolkit()
{
    gtk_widget_destroy(gtk_window_new(GTK_WINDOW_TOPLEVEL));
}

/// The fixed delay, cut short when the session is to end before it has begun.
void waitStartDelay()
{
    const gint64 end = g_get_monotonic_time() + startDelayUs;
    warmToolkit();
    for (gint64 left; (left = end - g_get_monotonic_time()) > 0 && !isStartOver();)
        g_usleep(gulong(MIN(left, startDelayStepUs)));
}

/// The window with everything that belongs to it.
void openWindow()
{
    g_autofree char *cssPath = nullptr;
    g_autofree char *localeDirectory = nullptr;
    setResourcePath(&cssPath, &localeDirectory, session.mainWindow);
    waitStartDelay();
    loadTexts(localeDirectory);
    buildWindow();
    loadStyle(cssPath);
    showWindow();
    connectControls(newSettingsMenu());
}

// --------------------------------------------------------------------------------------------------------- shut-down

void stopThreads()
{
    pushText(messageQueue, OwnedText(g_strdup(stopSentinel)));
    pushText(pipeMessageQueue, OwnedText(g_strdup(stopSentinel)));
    g_usleep(shutDownPauseUs);
    g_threadChecker = false;
}

void shutDown()
{
    claim_end();
    closeAnnotationProgram();
    stopThreads();
    g_object_unref(session.application);
    g_thread_unref(session.watcher);
    removeTraces();
    free_memory(session.mainWindow, session.chatWindow);
    for (GThread *const worker : session.workers)
        g_thread_unref(worker);
    UI_INFO_AS("main", "freed meamory");
    log_close();
    freeResource();
}

} // namespace

int main(int argc, char **argv)
{
    prepareProcess();
    session.mainWindow = new MainWindow();
    session.chatWindow = new ChatWindow();
    if (!reachDesktop(argc, argv))
        return 0;
    openLogAndChannel();
    openWindow();
    startThreads();
    showSharingButton(session.mainWindow);
    if (isNormal())
        beginNormalSession();
    else
        beginStartedSession();
    resizeMainWindow(session.mainWindow->window);
    run_main_loop();
    shutDown();
    return 0;
}
