#pragma once
// The technician's invitations to a call come to the screen.

#include "src/main.h"

/// Opens the call dialog for a video call. Thread: main.
gboolean ShowVideoConfirmationDialog(MainWindow *mainwindow);
/// Opens the call dialog for a voice call. Thread: main.
gboolean ShowAudioConfirmationDialog(MainWindow *mainwindow);
