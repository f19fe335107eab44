#pragma once
// A GLib warning or critical that nobody expected fails the test in which it came.

/// Lets the current test pass with one more warning or critical whose text contains this; it must come, or the test
/// fails as well.
void expectGlibWarning(const char *part);

/// Starts listening. For the runners' main, once.
void watchGlibWarnings();
