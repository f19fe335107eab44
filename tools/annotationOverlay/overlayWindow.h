#pragma once
// The window that the customer draws on. Thread: main.

#include <functional>
#include <string>

/// Makes the window, which shows nothing and lets every click through.
/// @param backToCursor  called when the customer leaves a tool with the right mouse button
void openOverlay(std::function<void()> backToCursor);

/// Acts on one command of the companion: a tool's digit, "7" or "Exit". What it doesn't know it ignores.
void obeyCommand(const std::string &command);
