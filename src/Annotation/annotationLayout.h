#pragma once
// Where the annotation program, its log and its pipes are.

#include "src/main.h"

/// Fills the record's four paths by session type and home directory. @return 0. Thread: main.
int setAnnotationPath(const char *sessionType, Annotation *annotation, const MainWindow *mainwindow);
