// A session as start-up would leave it.

#include "tests/support/testSession.h"

#include "Logger/logger.h"
#include "src/main.h"
#include "src/sessionState.h"
#include "src/support.h"
#include "src/Utils/Utils.h"
#include "tests/support/lastingRecord.h"

#include <filesystem>

namespace
{

namespace fs = std::filesystem;

/// Links to the built pictures, style sheet and languages; a test may put a file of its own in the place of a link.
void linkResources(const std::string &folder)
{
    for (const fs::directory_entry &entry : fs::directory_iterator(RESOURCE_FOLDER))
        fs::create_symlink(entry.path(), fs::path(folder) / entry.path().filename());
}

} // namespace

TestSession::TestSession(std::string sessionType, std::vector<std::string> more)
    : m_sessionType(std::move(sessionType)), m_arguments(std::move(more))
{
}

TestSession::~TestSession() = default;

std::vector<std::string> TestSession::newMessages()
{
    std::vector<std::string> all = logMessages();
    all.erase(all.begin(), all.begin() + long(m_logged));
    m_logged += all.size();
    return all;
}

void TestSession::SetUp()
{
    for (const char *const folder : {".brindle/Brindle/Logs", ".brindle/Brindle/Resource", ".brindle/temp"})
        home.makeFolder(folder);
    linkResources(home.file(".brindle/Brindle/Resource"));
    m_arguments.insert(m_arguments.begin(), {"brindle-ui", "-u", m_sessionType, "-p", home.path()});
    for (std::string &argument : m_arguments)
        m_argv.push_back(argument.data());
    m_argv.push_back(nullptr);

    adopt_main_thread();
    mainWindow = newLastingRecord<MainWindow>();
    chatWindow = newLastingRecord<ChatWindow>();
    initializeVariables(mainWindow);
    argumentParser(static_cast<int>(m_arguments.size()), m_argv.data(), mainWindow);
    chatWindow->sessionType = mainWindow->urs;
    set_log_path(mainWindow->urs, mainWindow);
    set_pipe_path(mainWindow->urs, mainWindow);
    createQueues();
    g_autofree char *css = nullptr;
    g_autofree char *locale = nullptr;
    setResourcePath(&css, &locale, mainWindow);
    agent = std::make_unique<PipeReader>(uiPipe());
}

void TestSession::TearDown()
{
    agent.reset();
    log_close();
}

std::vector<std::string> TestSession::sentLines(const size_t count)
{
    EXPECT_TRUE(waitUntil([&] { return agent->lines().size() >= count; }, [&] { return agent->seen(); }));
    return agent->lines();
}

void WindowSession::SetUp()
{
    TestSession::SetUp();
    createMainWindow(mainWindow, chatWindow);
    gtk_widget_show_all(mainWindow->window);
    for (GtkWidget *const hidden :
         {mainWindow->onDemandScreenSharingImage, mainWindow->participants->contentArea, mainWindow->chat->contentArea,
          mainWindow->annotation->contentArea, mainWindow->fileTransfer->contentArea,
          mainWindow->infoBarStruct->infoBar, mainWindow->fileTransfer->textBar, mainWindow->participants->seperator,
          mainWindow->fileTransfer->seperator})
        gtk_widget_hide(hidden);
    drainMainLoop();
}

void WindowSession::TearDown()
{
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    g_list_foreach(
        windows, [](gpointer window, gpointer) { g_object_ref(window); }, nullptr);
    for (GList *each = windows; each; each = each->next) {
        // The toolkit keeps its own, such as the one of the tooltips.
        if (gtk_window_get_window_type(GTK_WINDOW(each->data)) == GTK_WINDOW_TOPLEVEL)
            gtk_widget_destroy(GTK_WIDGET(each->data));
        g_object_unref(each->data);
    }
    drainMainLoop();
    TestSession::TearDown();
}
