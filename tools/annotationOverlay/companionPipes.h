#pragma once
// The overlay's ends of the two pipes. Thread: main.

#include <functional>
#include <string>

/// The one command that is longer than a digit: the session of drawing is over.
inline constexpr char exitCommand[] = "Exit";

/// Takes the companion's commands from the main loop on.
/// @param handle  called with each command: one digit, or `exitCommand`
/// @return false when the pipe can't be opened
bool watchCommands(const char *path, std::function<void(const std::string &command)> handle);

/// Tells the companion that the customer is back at the cursor. A report that nobody takes within a second is lost.
void reportNormal(const char *path);
