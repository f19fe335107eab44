// A program whose window hangs is left, once it was asked to end; one that only takes its time is not.

#include "src/lostDisplay.h"

#include "tests/support/dyingProgram.h"
#include "tests/support/testSession.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <semaphore>
#include <thread>

namespace
{
/// Each test's program is a process of its own, without the threads of this one.
class HungProgram : public TestSession
{
protected:
    HungProgram() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    static void begin()
    {
        before_leaving([] { say("cleaned "); }, [] { say("closed "); });
    }
    /// Returns in the middle of somebody's leaving.
    static void beginLeaving()
    {
        static std::binary_semaphore hasBegun(0);
        const auto closeSlowly = [] {
            hasBegun.release();
            g_usleep(G_USEC_PER_SEC / 5);
            say("closed ");
        };
        before_leaving([] { say("cleaned "); }, closeSlowly);
        std::thread(leave_hung_program, 0).detach();
        hasBegun.acquire();
    }
    [[noreturn]] static void hang()
    {
        for (;;)
            pause();
    }
};
} // namespace

TEST_F(HungProgram, IsLeftInOrder)
{
    const auto run = [] {
        begin();
        std::thread(leave_hung_program, 1).detach();
        hang();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "^closed cleaned $");
}

TEST_F(HungProgram, IsNotLeftOnceItsEndHasBegun)
{
    const auto run = [] {
        begin();
        claim_end();
        leave_hung_program(0);
        _exit(ownEnd);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(ownEnd), "^$");
}

TEST_F(HungProgram, ThatGoesOnTooLateWaitsForTheOneWhoLeavesIt)
{
    const auto run = [] {
        beginLeaving();
        claim_end();
        _exit(ownEnd);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "^closed cleaned $");
}

TEST_F(HungProgram, BeginsNoWorkOnceItIsLeft)
{
    const auto run = [] {
        beginLeaving();
        {
            const UnbrokenWork work;
            say("written ");
        }
        hang();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "^closed cleaned $");
}

TEST_F(HungProgram, LeavesNoWorkThatBeganBeforeIt)
{
    const auto run = [] {
        begin();
        {
            const UnbrokenWork work;
            std::thread(leave_hung_program, 0).detach();
            g_usleep(G_USEC_PER_SEC / 5);
            say("written ");
        }
        hang();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "^written closed cleaned $");
}

TEST_F(HungProgram, IsNotLeftInTheMiddleOfWork)
{
    const auto run = [] {
        begin();
        {
            const UnbrokenWork work;
            std::thread(leave_hung_program, 1).detach();
            g_usleep(3 * G_USEC_PER_SEC / 2);
            say("written ");
        }
        hang();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "^written closed cleaned $");
}
