#pragma once
// Waiting on a FIFO in a way that can be given up.

#include <glib.h>

/// Asked between the steps of a wait; true gives the wait up. Called on the waiting thread.
using GiveUp = bool (*)();

/// Opens a FIFO for writing as soon as somebody has it open for reading. Tries at least once.
/// @return a non-blocking descriptor, or -1 with errno set: ECANCELED when the wait was given up
/// Thread: any; blocks.
int openForWriting(const char *path, GiveUp giveUp);

/// Writes everything, waiting while the pipe is full. Tries at least once.
/// @return false with errno set: ECANCELED when the wait was given up
/// Thread: any; blocks.
bool writeWhole(int descriptor, const char *text, gsize length, GiveUp giveUp);
