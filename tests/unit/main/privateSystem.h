#pragma once
// System folders that only the current test sees.

#include <gtest/gtest.h>

#include <initializer_list>

/// Puts an empty folder of the test's own over each of these existing system folders, for the rest of the process.
/// To be called before the process has more than one thread.
::testing::AssertionResult usePrivateFolders(std::initializer_list<const char *> folders);
