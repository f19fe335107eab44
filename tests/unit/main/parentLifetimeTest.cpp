// A session that the agent started ends with its agent.

#include "src/agentLauncher.h"

#include "src/support.h"
#include "tests/support/testSession.h"

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace
{
class ParentLifetime : public TestSession
{
};
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

TEST_F(ParentLifetime, SigtermIsKeptAgainOnceTheDesktopHasAnswered)
{
    holdBackSigterm();
    {
        const SigtermAtOnce endsAtOnce;
    }
    kill(getpid(), SIGTERM);
    EXPECT_TRUE(isSigtermPending());
}

TEST_F(ParentLifetime, ParentThatDiedBeforeItWasFollowedCountsAsSigterm)
{
    holdBackSigterm();
    const auto followAnother = [] {
        followParent();
        _exit(EXIT_SUCCESS);
    };
    // The process that this runs in has another parent than the one that was remembered, and doesn't hold SIGTERM back.
    EXPECT_EXIT(followAnother(), testing::KilledBySignal(SIGTERM), "");
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
