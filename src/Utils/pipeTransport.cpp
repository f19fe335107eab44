// The transport between the window and its agent: two FIFOs, one text per open-write-close. A write waits for its
// reader in short steps instead of inside open(), so that a request to end the program and the X server's end get
// through to it.
// Owns the pipe paths, which stay to the end of the process: threads that are not joined still hold them.

#include "src/Utils/pipeTransport.h"

#include "Logger/logger.h"
#include "src/Utils/installLayout.h"
#include "src/Utils/pipeWaiting.h"
#include "src/lostDisplay.h"
#include "src/support.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

char *g_UiStatus = nullptr;
char *g_AgentStatus = nullptr;
const char *g_productName = "";
GMutex pipeMutex;

namespace
{

constexpr mode_t pipeMode = 0666;

void createPipe(const char *path)
{
    if (mkfifo(path, pipeMode) == 0)
        UI_INFO_AS("set_pipe_path", "pipe created %s", path);
    else
        UI_INFO_AS("set_pipe_path", "error creating pipe %s", path);
}

void chooseProduct(const InstallLayout &layout, const MainWindow *mainWindow)
{
    if (layout.agentProduct)
        g_productName = layout.agentProduct;
    else if (mainWindow->homeDir && *mainWindow->homeDir)
        g_productName = mainWindow->productName;
}

bool isWaitOver()
{
    if (quit_requested())
        return true;
    leave_lost_display();
    return false;
}

} // namespace

void set_pipe_path(const char *sessionType, const MainWindow *mainWindow)
{
    UI_ENTER();
    const InstallLayout &layout = findInstallLayout(sessionType, mainWindow->homeDir);
    const OwnedText directory = expandLayoutPath(layout.pipeDirectory, mainWindow->homeDir);
    g_free(g_UiStatus);
    g_free(g_AgentStatus);
    g_UiStatus = g_strdup_printf("%s/%s", directory.get(), "myfifo");
    g_AgentStatus = g_strdup_printf("%s/%s", directory.get(), "Status");
    chooseProduct(layout, mainWindow);
    if (g_strcmp0(sessionType, "ras") == 0)
        UI_INFO("productName: %s, ui pipe %s, st pipe %s", g_productName, g_UiStatus, g_AgentStatus);
    if (g_strcmp0(sessionType, "normal") == 0)
        unlinkPipes();
    createPipe(g_AgentStatus);
    createPipe(g_UiStatus);
}

void pipewriter(const char *pipePath, const char *text)
{
    const MutexLock lock(&pipeMutex);
    UI_ENTER();
    const int pipe = openForWriting(pipePath, isWaitOver);
    if (pipe < 0) {
        UI_INFO("error opening file %s", g_strerror(errno));
        return;
    }
    if (!writeWhole(pipe, text, strlen(text), isWaitOver))
        UI_INFO("Error opening file %s: %s", pipePath, g_strerror(errno));
    if (close(pipe) != 0)
        UI_INFO("Error has occured %s", g_strerror(errno));
}

void unlinkPipes()
{
    UI_ENTER();
    unlink(g_AgentStatus);
    unlink(g_UiStatus);
}
