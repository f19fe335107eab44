// The X server goes away while nobody asks the toolkit: whoever waits for something else ends the program.

#include "src/lostDisplay.h"
#include "tests/support/dyingProgram.h"
#include "tests/support/testSession.h"

#include <gdk/gdkx.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>

namespace
{
class LostServer : public WindowSession
{
protected:
    static void lose()
    {
        before_leaving([] { say("cleaned "); }, [] { say("closed "); });
        watch_display();
        shutdown(ConnectionNumber(gdk_x11_display_get_xdisplay(gdk_display_get_default())), SHUT_RDWR);
    }
};
} // namespace

TEST_F(LostServer, IsNoticedByWhoeverWaits)
{
    const auto run = [] {
        lose();
        leave_lost_display();
        _exit(ownEnd);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "cleaned $");
}

TEST_F(LostServer, BreaksNoWorkOff)
{
    const auto run = [] {
        lose();
        {
            const UnbrokenWork work;
            leave_lost_display();
            say("written ");
        }
        leave_lost_display();
        _exit(ownEnd);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_FAILURE), "written cleaned $");
}

TEST_F(LostServer, IsNotMissedWhileItIsThere)
{
    const auto run = [] {
        watch_display();
        leave_lost_display();
        _exit(ownEnd);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(ownEnd), "");
}
