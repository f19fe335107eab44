#pragma once
// Who sits at the machine.

/// Name of the user of the active graphical session on seat0, freed with `free`; null when there is none or the login
/// manager can't be asked. Ends the process with status 2 when the libraries it loads are missing.
/// Thread: main; waits for the bus and up to four answers, for each no longer than two seconds, and no longer than half
/// a second past the end.
char *getActiveUser();
