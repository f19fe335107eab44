// A session that the agent started ends with its agent.

#include "src/agentLauncher.h"

#include "src/support.h"
#include "tests/support/testSession.h"

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace
{
class ParentLifetime : public TestSession
{
};

/// Of a process that is to be ended.
[[noreturn]] void waitInVain()
{
    g_usleep(20 * G_USEC_PER_SEC);
    _exit(EXIT_SUCCESS);
}
} // namespace

TEST_F(ParentLifetime, TheKernelIsAskedForSigtermWhenTheParentDies)
{
    holdBackSigterm();
    EXPECT_EQ(handle_on_Parent_kill(), 1);
    int signalNumber = 0;
    ASSERT_EQ(prctl(PR_GET_PDEATHSIG, &signalNumber), 0);
    EXPECT_EQ(signalNumber, SIGTERM);
    EXPECT_FALSE(quit_requested());
}

TEST_F(ParentLifetime, SigtermEndsTheSessionOrderly)
{
    holdBackSigterm();
    handle_on_Parent_kill();
    kill(getpid(), SIGTERM);
    EXPECT_TRUE(waitUntil(quit_requested));
    EXPECT_TRUE(logHas("Caught sigterm"));
}

TEST_F(ParentLifetime, SigtermDuringTheStartIsKept)
{
    holdBackSigterm();
    kill(getpid(), SIGTERM);
    handle_on_Parent_kill();
    EXPECT_TRUE(waitUntil(quit_requested));
}

TEST_F(ParentLifetime, SigtermIsKeptOnceTheDesktopWasReached)
{
    holdBackSigterm();
    watchStart();
    EXPECT_FALSE(isStartOver());
    noteDesktopReached();
    kill(getpid(), SIGTERM);
    EXPECT_TRUE(waitUntil(isStartOver));
    handle_on_Parent_kill();
    EXPECT_TRUE(waitUntil(quit_requested));
}

TEST_F(ParentLifetime, SigtermBeforeThatEndsAtOnce)
{
    // In a process without the threads of this one, which the race checker may have started.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto terminate = [] {
        holdBackSigterm();
        watchStart();
        kill(getpid(), SIGTERM);
        waitInVain();
    };
    EXPECT_EXIT(terminate(), testing::KilledBySignal(SIGTERM), "");
}

TEST_F(ParentLifetime, SigtermIsBlockedInNothingThatTheToolkitStarts)
{
    holdBackSigterm();
    handle_on_Parent_kill();
    sigset_t mask;
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &mask), 0);
    EXPECT_FALSE(sigismember(&mask, SIGTERM));
}

TEST_F(ParentLifetime, SigtermEndsWhatIsForkedAtOnce)
{
    holdBackSigterm();
    handle_on_Parent_kill();
    const auto terminate = [] {
        raise(SIGTERM);
        _exit(EXIT_SUCCESS);
    };
    EXPECT_EXIT(terminate(), testing::KilledBySignal(SIGTERM), "");
    EXPECT_FALSE(logHas("Caught sigterm"));
}

TEST_F(ParentLifetime, SigtermEndsWhatWasForkedAMomentAgo)
{
    holdBackSigterm();
    handle_on_Parent_kill();
    // Past the library's fork(), as if the signal came before the new process takes its first step.
    const auto child = pid_t(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0));
    if (child == 0) {
        raise(SIGTERM);
        _exit(EXIT_SUCCESS);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
}

TEST_F(ParentLifetime, AnotherSignalOnlyLogs)
{
    ParentSignal(SIGUSR1);
    EXPECT_TRUE(logHas("Caught random signal"));
    EXPECT_FALSE(logHas("Caught sigterm"));
    EXPECT_FALSE(quit_requested());
}

TEST_F(ParentLifetime, SigtermTwiceIsLoggedTwiceAndEndsOnce)
{
    ParentSignal(SIGTERM);
    ParentSignal(SIGTERM);
    EXPECT_EQ(countLogMessages(logPath(), "Caught sigterm"), 2);
    EXPECT_TRUE(quit_requested());
}
