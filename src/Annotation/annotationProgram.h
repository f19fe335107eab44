#pragma once
// The program that draws on the customer's screen, from its start to its end.

#include "src/main.h"

/// True from the moment the program is about to start until it has ended or its pipe failed. Any thread.
extern std::atomic<bool> isAnnotationAlive;
/// True once the program of the last start has ended, which is a little before its clean-up. Thread: any.
bool isAnnotationProgramGone();

/// Starts the program and its two threads. @return 1, or 0 when it runs already. Thread: main.
int startAnnotationApplication(MainWindow *mainwindow);
/// Body of "AnnotationStarter": runs the program to its end and cleans up.
/// @param annotation  the `Annotation`; must live as long as the process
/// @return null
gpointer StartAnnotationWindow(gpointer annotation);
/// Cleans up after the program and has the panel closed.
/// @param run  number of the start that has ended, or 0 for the last one. One that a later start has overtaken is
///             only logged: flag, pipes and panel belong to the later one.
/// Thread: "AnnotationStarter".
void closeAnnotation(Annotation *annotation, guint run = 0);
/// Counts the program of a start as ended, unless a later start has overtaken it. Thread: any.
void endAnnotationRun(Annotation *annotation, guint run);
