#pragma once
// Only one companion runs per user session.

#include <gio/gio.h>

/// Registers the program as the session's companion.
/// @param application  receives the registration, to be released at the end
/// @return false when another companion runs: then this one is to end. Without a session bus it counts as the only one.
/// Thread: main. Does not wait for the other one, however busy it is.
bool registerOnlyInstance(GApplication **application);
