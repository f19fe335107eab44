// main() of the widget tests: needs a display, see uirun.

#include "tests/support/glibWarnings.h"

#include "src/support.h"

#include <gtest/gtest.h>

#include <csignal>

int main(int argc, char **argv)
{
    signal(SIGPIPE, SIG_IGN);
    ::testing::InitGoogleTest(&argc, argv);
    // A process that is to end begins anew, as threads and a display don't survive a fork. It may take the toolkit's
    // messages itself, as the program does.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    if (!::testing::internal::InDeathTestChild())
        watchGlibWarnings();
    // Listing the tests needs no display.
    if (!::testing::GTEST_FLAG(list_tests))
        gtk_init(&argc, &argv);
    adopt_main_thread();
    return RUN_ALL_TESTS();
}
