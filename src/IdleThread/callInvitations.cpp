// The two kinds of calls; both are asked about in the same words.

#include "src/IdleThread/callInvitations.h"

#include "Logger/logger.h"
#include "src/Dialog/callDialog.h"

gboolean ShowVideoConfirmationDialog(MainWindow *mainwindow)
{
    UI_ENTER();
    UI_INFO("video call Dialog Prompted");
    show_audio_video_recive(mainwindow, "Video Call");
    return G_SOURCE_REMOVE;
}

gboolean ShowAudioConfirmationDialog(MainWindow *mainwindow)
{
    UI_ENTER();
    UI_INFO("audio call Dialog Prompted");
    show_audio_video_recive(mainwindow, "Voice Call");
    return G_SOURCE_REMOVE;
}
