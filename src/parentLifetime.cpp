// A session that the agent started ends with the agent: the kernel sends SIGTERM when the parent dies. The signal is
// blocked in every thread but one that waits for it and never holds a lock, so the handler may log and ask for the end
// wherever the rest of the program happens to be. Until the desktop has answered, a thread for that time alone lets it
// end the process at once: a server that hangs keeps the main thread, but not the end.

#include "src/agentLauncher.h"

#include "Logger/logger.h"
#include "src/support.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <semaphore>

namespace
{

// Written by holdBackSigterm before any other thread runs.
pid_t firstParent = 0;

sigset_t sigtermAlone()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    return set;
}

/// Body of "Brindle-start": SIGTERM finds a thread that takes it, and no handler.
gpointer takeSigterm(gpointer over)
{
    releaseSigterm();
    static_cast<std::binary_semaphore *>(over)->acquire();
    return nullptr;
}

/// Body of "Brindle-signals": the one thread in which SIGTERM is delivered.
gpointer waitForSigterm(gpointer)
{
    releaseSigterm();
    for (;;)
        pause();
}

/// In a forked process, where the handler must not run.
void leaveSigtermAlone()
{
    signal(SIGTERM, SIG_DFL);
    releaseSigterm();
}

bool installHandler()
{
    struct sigaction action = {};
    action.sa_handler = ParentSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    return sigaction(SIGTERM, &action, nullptr) == 0;
}

} // namespace

void holdBackSigterm()
{
    firstParent = getppid();
    const sigset_t set = sigtermAlone();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    pthread_atfork(nullptr, nullptr, leaveSigtermAlone); // what a library starts ends by it as well
}

bool isSigtermPending()
{
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGTERM);
}

void releaseSigterm()
{
    const sigset_t set = sigtermAlone();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

SigtermAtOnce::SigtermAtOnce() : thread(g_thread_new("Brindle-start", takeSigterm, &over)) {}

SigtermAtOnce::~SigtermAtOnce()
{
    over.release();
    g_thread_join(thread);
}

bool followParent()
{
    signal(SIGTERM, SIG_DFL); // an agent may ignore it, and has then handed that on
    if (prctl(PR_SET_PDEATHSIG, SIGTERM) != 0)
        return false;
    if (getppid() != firstParent)
        kill(getpid(), SIGTERM); // it died before it could be watched
    return true;
}

int handle_on_Parent_kill()
{
    UI_ENTER();
    if (!followParent()) {
        UI_INFO("error setting up parent porcess signal");
        releaseSigterm();
        return 0;
    }
    if (!installHandler()) {
        UI_INFO("cant catch sigint");
        releaseSigterm();
        return 0;
    }
    g_thread_unref(g_thread_new("Brindle-signals", waitForSigterm, nullptr));
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
