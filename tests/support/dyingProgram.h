#pragma once
// What the program of a death test says and gives, so that its test can tell how it ended.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>

inline constexpr int ownEnd = 7; ///< status of a program that ends by itself

/// Says a word where the test hears it. Thread: any.
inline void say(const char *word)
{
    EXPECT_GT(write(STDERR_FILENO, word, strlen(word)), 0);
}
