// main() of the unit tests: no display.

#include "tests/support/glibWarnings.h"

#include <gtest/gtest.h>

#include <csignal>

int main(int argc, char **argv)
{
    signal(SIGPIPE, SIG_IGN);
    ::testing::InitGoogleTest(&argc, argv);
    watchGlibWarnings();
    return RUN_ALL_TESTS();
}
