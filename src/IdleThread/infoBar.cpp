// The info bar. Its text crosses threads under a lock of its own; its widgets change on the main thread only.

#include "src/IdleThread/infoBar.h"

#include "Logger/logger.h"
#include "src/support.h"

namespace
{

/// The stored text, ready for the label.
OwnedText readText(InfoBar *infoBar)
{
    const MutexLock lock(&infoBar->textMutex);
    return displayable_text(infoBar->infoBarText);
}

void showText(InfoBar *infoBar)
{
    gtk_label_set_text(GTK_LABEL(infoBar->infoBarLabel), readText(infoBar).get());
    gtk_widget_show(infoBar->infoBar);
}

gboolean showStoredText(InfoBar *infoBar)
{
    showText(infoBar);
    return G_SOURCE_REMOVE;
}

gboolean hideWidgets(InfoBar *infoBar)
{
    gtk_widget_hide(infoBar->infoBar);
    gtk_widget_queue_resize(infoBar->mainWindow);
    return G_SOURCE_REMOVE;
}

gboolean endNotice(InfoBar *infoBar)
{
    // All timers have the same length, so the one that runs is the oldest.
    g_queue_pop_head(&infoBar->hideTimers);
    return hideInfoBar(infoBar);
}

} // namespace

void setInfoBarText(InfoBar *infoBar, const char *text)
{
    const MutexLock lock(&infoBar->textMutex);
    replace_text(infoBar->infoBarText, text);
}

int startInfoBar(InfoBar *infoBar, const char *text)
{
    UI_ENTER();
    setInfoBarText(infoBar, text);
    run_on_main(PopUpInfoBar, infoBar);
    return 0;
}

gboolean PopUpInfoBar(InfoBar *infoBar)
{
    UI_ENTER();
    showText(infoBar);
    hideInfoBarLater(infoBar);
    return G_SOURCE_REMOVE;
}

gboolean BlockinputInfoBar(InfoBar *infoBar)
{
    UI_ENTER();
    run_on_main(showStoredText, infoBar);
    return G_SOURCE_REMOVE;
}

gboolean hideInfoBar(InfoBar *infoBar)
{
    UI_ENTER();
    UI_INFO("Hiding info bar");
    run_on_main(hideWidgets, infoBar);
    return G_SOURCE_REMOVE;
}

void hideInfoBarLater(InfoBar *infoBar)
{
    // Every notice brings its own timer and none is stopped: an early one may hide a later notice.
    const guint id = g_timeout_add(noticeMs, reinterpret_cast<GSourceFunc>(endNotice), infoBar);
    g_queue_push_tail(&infoBar->hideTimers, GUINT_TO_POINTER(id));
}

void freeInfoBar(InfoBar *infoBar)
{
    while (!g_queue_is_empty(&infoBar->hideTimers))
        g_source_remove(GPOINTER_TO_UINT(g_queue_pop_head(&infoBar->hideTimers)));
    g_free(infoBar->infoBarText);
    delete infoBar;
}
