#pragma once
// Rotation of the log file; the one operation is declared in the logger's header, its name rule here for the tests.

#include <glib.h>

/// True for the name of a rotated file: `fileName`, "_", a date and a sequence, split as `strtok` splits at "_".
/// @param dateOut, sequenceOut  receive the two parts; the caller frees them; unchanged for other names
bool splitRotatedName(const char *entryName, const char *fileName, char **dateOut, char **sequenceOut);
