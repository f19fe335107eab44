#pragma once
// The notice above the window's content, or inside a dialog.

#include "src/main.h"

/// How long a notice stays.
inline constexpr guint noticeMs = 3000;

/// Shows a notice for 3 seconds. @param text copied, already translated. @return 0. Thread: any.
int startInfoBar(InfoBar *infoBar, const char *text);
/// Replaces the text that the next notice shows, without showing it. @param text copied. Thread: any.
void setInfoBarText(InfoBar *infoBar, const char *text);
/// Shows the stored text and hides it after 3 seconds. Thread: main.
gboolean PopUpInfoBar(InfoBar *infoBar);
/// Shows the stored text until `hideInfoBar`. Thread: any; the widgets change on the main thread.
gboolean BlockinputInfoBar(InfoBar *infoBar);
/// Hides the bar after 3 seconds. Thread: main.
void hideInfoBarLater(InfoBar *infoBar);
/// Frees a record, made with `new`, that is not the main window's, with its timers. Its widgets belong to their dialog.
/// Thread: main.
void freeInfoBar(InfoBar *infoBar);
/// Hides the notice. Thread: any; the widgets change on the main thread.
gboolean hideInfoBar(InfoBar *infoBar);
