// A session that the agent started ends with the agent: the kernel sends SIGTERM when the parent dies. One thread
// serves that signal and never holds a lock, so the handler may log and ask for the end; any other thread that the
// signal finds passes it on. During the start the signal is blocked, and a thread that does nothing else looks for it
// and for the parent: a display or bus that hangs keeps the main thread, but not the end. The kernel is asked no sooner
// than the session begins, as it takes the end of the thread that started this program for its parent's end.

#include "src/agentLauncher.h"

#include "Logger/logger.h"
#include "src/Utils/oneShotEvent.h"
#include "src/lostDisplay.h"
#include "src/support.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <semaphore>

namespace
{

constexpr int lookEveryMs = 50;

// Written by holdBackSigterm before any other thread runs.
pid_t firstParent = 0;
pid_t ownProcess = 0;
// "Brindle-start" while the start is watched. Main thread.
GThread *startWatcher = nullptr;
std::atomic<bool> isStartWatched = false;
std::atomic<bool> isDesktopReached = false;
OneShotEvent startIsDone;
// "Brindle-signals". Written before the handler stands.
pthread_t signalThread;

/// What "Brindle-signals" tells the thread that has started it.
struct Service {
    std::binary_semaphore isReady{0};
    bool stands = false;
};

sigset_t sigtermAlone()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    return set;
}

bool isSigtermPending()
{
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGTERM);
}

bool hasParentGone()
{
    return getppid() != firstParent;
}

void leaveSigtermAlone()
{
    signal(SIGTERM, SIG_DFL);
    releaseSigterm(); // one that waits ends the process here
}

void endBySigterm()
{
    leaveSigtermAlone();
    raise(SIGTERM);
}

/// Body of "Brindle-start".
gpointer lookForEnd(gpointer)
{
    int looks = 0; // since the start was over
    while (!startIsDone.wait(lookEveryMs)) {
        if (!isStartOver())
            continue;
        if (!isDesktopReached)
            endBySigterm();
        if (lookEveryMs * ++looks > longestEndSeconds * 1000)
            leave_hung_program(0);
    }
    return nullptr;
}

void endStartWatch()
{
    if (!startWatcher)
        return;
    startIsDone.happen();
    g_thread_join(startWatcher);
    startWatcher = nullptr;
    isStartWatched = false;
}

/// Calls nothing that a thread may be in the middle of, unless this is the thread that serves.
void handleSigterm(int signalNumber)
{
    if (getpid() != ownProcess)
        endBySigterm(); // forked a moment ago
    else if (pthread_equal(pthread_self(), signalThread))
        ParentSignal(signalNumber);
    else
        pthread_kill(signalThread, signalNumber);
}

bool followParent()
{
    if (prctl(PR_SET_PDEATHSIG, SIGTERM) != 0)
        return false;
    if (hasParentGone())
        kill(getpid(), SIGTERM); // before it could be followed
    return true;
}

bool installHandler()
{
    struct sigaction action = {};
    action.sa_handler = handleSigterm;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    return sigaction(SIGTERM, &action, nullptr) == 0;
}

/// Body of "Brindle-signals".
gpointer serveSigterm(gpointer data)
{
    auto *const service = static_cast<Service *>(data);
    signalThread = pthread_self();
    const bool stands = service->stands = installHandler();
    service->isReady.release();
    if (!stands)
        return nullptr;
    releaseSigterm();
    for (;;)
        pause();
}

} // namespace

void holdBackSigterm()
{
    firstParent = getppid();
    ownProcess = getpid();
    const sigset_t set = sigtermAlone();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    pthread_atfork(nullptr, nullptr, leaveSigtermAlone); // what a library forks ends by it as well
}

void releaseSigterm()
{
    const sigset_t set = sigtermAlone();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void watchStart()
{
    signal(SIGTERM, SIG_DFL); // an agent may ignore it, and has then handed that on
    isStartWatched = true;
    startWatcher = g_thread_new("Brindle-start", lookForEnd, nullptr);
}

void noteDesktopReached()
{
    isDesktopReached = true;
}

bool isStartOver()
{
    return isStartWatched && (isSigtermPending() || hasParentGone());
}

int handle_on_Parent_kill()
{
    UI_ENTER();
    endStartWatch();
    if (!followParent()) {
        UI_INFO("error setting up parent porcess signal");
        releaseSigterm();
        return 0;
    }
    Service service;
    g_thread_unref(g_thread_new("Brindle-signals", serveSigterm, &service));
    service.isReady.acquire();
    if (!service.stands)
        UI_INFO("cant catch sigint");
    releaseSigterm(); // here, too: what the toolkit starts would have it blocked
    return 1;
}

void ParentSignal(int signalNumber)
{
    UI_ENTER();
    if (signalNumber != SIGTERM) {
        UI_INFO("Caught random signal");
        return;
    }
    UI_INFO("Caught sigterm");
    request_quit();
}
