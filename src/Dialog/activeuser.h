#pragma once
// Who sits at the machine.

/// Name of the user of the active graphical session on seat0, freed with `free`; null when there is none or the login
/// manager can't be asked. Ends the process with status 2 when the libraries it loads are missing.
/// Thread: main; waits for the bus and up to four answers, for each no longer than two seconds; half a second more for
/// the thread that asks to give one up, and no longer than that once the end was asked for.
char *getActiveUser();
