// Starts the agent and watches it. Everything the child needs is prepared before the fork: between fork and exec other
// threads' locks may be held for ever, so the child only resets its signals and becomes the agent.

#include "src/agentLauncher.h"

#include "Logger/logger.h"
#include "src/support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int maxTries = 3;
constexpr gulong retryPauseUs = G_USEC_PER_SEC;
constexpr char waylandAgent[] = ".brindle/Brindle/bin/screenshare";
constexpr char agent[] = ".brindle/Brindle/bin/main";

const char *orEmpty(const char *text)
{
    return text ? text : "";
}

OwnedText agentPath(const MainWindow *mainwindow)
{
    return OwnedText(g_strdup_printf("%s/%s", mainwindow->homeDir, isWayland() ? waylandAgent : agent));
}

/// What the log says about a start; the lines are written before the fork, on behalf of the child.
void logStart(const char *path, const MainWindow *mainwindow)
{
    const char *const sessionType = g_getenv("XDG_SESSION_TYPE");
    UI_INFO_AS("AgentStarter", "%s", sessionType ? sessionType : "(null)");
    UI_INFO_AS("AgentStarter", "%s", path);
    UI_INFO_AS("AgentStarter",
               "execl args: %s -productType true -isRolechange %s -email %s -version %s -isDemoSession %s "
               "-applicationPath %s -productName %s",
               path, mainwindow->rolechange, mainwindow->email, orEmpty(mainwindow->sysVersion),
               orEmpty(mainwindow->demoSession), mainwindow->homeDir, mainwindow->productName);
}

/// Default dispositions and an empty mask: what a program expects when it starts.
void resetSignals()
{
    for (int number = 1; number < NSIG; number++)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void becomeAgent(const char *path, char *const *arguments)
{
    resetSignals();
    execv(path, arguments);
    const char *const reason = strerrordesc_np(errno); // unlike perror, touches no lock
    for (const char *const piece : {"execv: ", reason ? reason : "failed", "\n"})
        if (write(STDERR_FILENO, piece, strlen(piece)) < 0)
            break;
    _exit(EXIT_FAILURE);
}

pid_t startAgent(const MainWindow *mainwindow)
{
    const OwnedText path = agentPath(mainwindow);
    // execv takes arguments that it promises not to change.
    const char *const arguments[] = {path.get(),
                                     "-productType",
                                     "true",
                                     "-isRolechange",
                                     mainwindow->rolechange,
                                     "-email",
                                     mainwindow->email,
                                     "-version",
                                     orEmpty(mainwindow->sysVersion),
                                     "-isDemoSession",
                                     orEmpty(mainwindow->demoSession),
                                     "-applicationPath",
                                     mainwindow->homeDir,
                                     "-productName",
                                     mainwindow->productName,
                                     nullptr};
    logStart(path.get(), mainwindow);
    const pid_t child = fork();
    if (child < 0) {
        perror("fork");
        _exit(EXIT_FAILURE);
    }
    if (child == 0)
        becomeAgent(path.get(), const_cast<char *const *>(arguments));
    return child;
}

int waitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno == EINTR)
            continue;
        perror("waitpid");
        _exit(EXIT_FAILURE);
    }
    return status;
}

/// Logs how the agent ended and pauses after a failure; true when it ended well.
bool reviewEnd(int status)
{
    if (WIFEXITED(status)) {
        UI_INFO_AS("AgentStarter", "child program exited with status %d", WEXITSTATUS(status));
        if (WEXITSTATUS(status) == 0)
            return true;
        g_usleep(retryPauseUs);
    } else if (WIFSIGNALED(status)) {
        UI_INFO_AS("AgentStarter", "child program terminated with signal: %d", WTERMSIG(status));
    } else {
        UI_INFO_AS("AgentStarter", "child process did not terminated normally");
    }
    return false;
}

} // namespace

gpointer AgentStarter(gpointer data)
{
    UI_ENTER();
    const auto *const mainwindow = static_cast<const MainWindow *>(data);
    UI_INFO("Macro defined SPAWNPROCESS");
    UI_INFO("%s", mainwindow->productName);
    for (int tries = maxTries; tries > 0 && !quit_requested(); tries--) {
        if (reviewEnd(waitFor(startAgent(mainwindow))))
            break;
        UI_INFO("retry count %d", tries);
    }
    request_quit();
    return nullptr;
}
