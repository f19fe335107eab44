#pragma once
// Waiting without sleeping: the main loop turns until something holds.

#include <gtest/gtest.h>

#include <functional>
#include <string>

inline constexpr int defaultDeadlineMs = 10000;

/// Turns the default main context on the calling thread until the condition holds or the deadline wakes it.
/// @param whatIsSeen  says what there is instead; its text stands in the failure. May be empty.
/// Use: `ASSERT_TRUE(waitUntil([&] { return peer.lines().size() == 2; }, [&] { return peer.seen(); }));`
::testing::AssertionResult waitUntil(const std::function<bool()> &condition,
                                     const std::function<std::string()> &whatIsSeen = {},
                                     int deadlineMs = defaultDeadlineMs);

/// Runs every callback that is due now, and what those schedule, until nothing is pending; but not for ever: on a slow
/// machine an animation, such as a file chooser's, always has its next frame due.
void drainMainLoop();
