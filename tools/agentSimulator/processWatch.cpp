// Watches what ends a session from outside: the ending signals, taken from a descriptor so that no code runs in
// signal context, and the companion, which is our parent or our child.

#include "agentSimulator/processWatch.h"

#include "agentSimulator/childProcess.h"
#include "agentSimulator/descriptor.h"

#include <csignal>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace agentSimulator
{

namespace
{

constexpr int lookPeriodMs = 50;

sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, number);
    return signals;
}

void takeSignal(int descriptor, Ending &ending)
{
    signalfd_siginfo info;
    if (read(descriptor, &info, sizeof info) == static_cast<ssize_t>(sizeof info))
        ending.request(0, "signal " + std::to_string(info.ssi_signo));
}

void lookAfterCompanion(const Companion &companion, Ending &ending)
{
    int waitStatus = 0;
    if (companion.parent > 0 && getppid() != companion.parent)
        ending.request(0, "the companion is gone");
    if (companion.child > 0 && waitpid(companion.child, &waitStatus, WNOHANG) == companion.child)
        ending.request(0, "the companion ended with " + describeWaitStatus(waitStatus));
}

} // namespace

void prepareSignals()
{
    signal(SIGPIPE, SIG_IGN);
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

void watchProcesses(const Companion &companion, Ending &ending)
{
    const sigset_t signals = endingSignals();
    const Descriptor arrived(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    while (!ending.isRequested()) {
        pollfd waits[] = {{arrived.get(), POLLIN, 0}, {ending.descriptor(), POLLIN, 0}};
        poll(waits, 2, lookPeriodMs);
        if (waits[0].revents != 0)
            takeSignal(arrived.get(), ending);
        lookAfterCompanion(companion, ending);
    }
}

} // namespace agentSimulator
