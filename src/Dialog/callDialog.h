#pragma once
// The technician's invitation to a voice or video call. Thread: main.

#include "src/main.h"

/// The open invitation, or null; a reference is held.
extern GtkWidget *audioVideoDialog;

/// Shows an invitation; an open one is closed without an answer. It goes away after 3 minutes.
/// @param kind  "Voice Call" or "Video Call"; accepted and not used
void show_audio_video_recive(MainWindow *mainwindow, const char *kind);
/// Closes the open invitation without an answer; nothing happens when there is none.
void closeCallDialog();

/// "response" of the invitation.
void response_AudioVideo(GtkDialog *dialog, int response, MainWindow *mainwindow);
/// "delete-event" of the invitation; the answer was given by "response" when the dialog is no longer the open one.
gboolean on_response_delete_AudioVideo(GtkWidget *dialog, GdkEvent *event, MainWindow *mainwindow);
/// "destroy" of the invitation: gives the global's reference back.
void on_response_AudioVideo(GtkWidget *dialog, MainWindow *mainwindow);
