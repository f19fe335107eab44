#pragma once
// The two pipes between the window and the annotation program.

#include "src/main.h"

/// Writes one command to the program. Waits until the program reads, but neither for a program that has ended
/// meanwhile nor on when the end of the session is asked for; a command that is written at the end of the session
/// ("Exit") is waited for a second and a half. A failed write is logged and lost.
/// @return 0. Thread: any.
int AnnotationPipeWriter(const char *pipePath, const char *text);

/// Body of "AnnotationReader": takes the program's reports, one opening and closing of its pipe each, until the
/// program's run is over. @param mainwindow the `MainWindow`. @return null.
gpointer AnnotationPipeReader(gpointer mainwindow);

/// Wakes the reader of a pipe without sending it anything. Thread: any.
void wakeAnnotationReader(const char *pipeOutPath);
