// The watch over the customer's clipboard. The text itself never leaves here but for the audit line; the agent gets
// at the clipboard only with the answer to the permission question.

#include "src/ClipBoard/ClipBoard.h"

#include "Logger/logger.h"
#include "src/Dialog/clipboardDialog.h"
#include "src/Utils/pipeTransport.h"
#include "src/support.h"

#include <cstring>

namespace
{

constexpr gsize limitBits = 50000;

/// 6249 bytes are taken, 6250 are not: the terminator counts, and bits are what is limited. Kept exactly so.
bool isTooLarge(const char *text)
{
    return (strlen(text) + 1) * 8 > limitBits;
}

/// Reports a text once, however often the clipboard changes hands with it.
void auditText(MainWindow *mainwindow, const char *escaped)
{
    const bool isNew = strcmp(escaped, mainwindow->clip_Text ? mainwindow->clip_Text : "") != 0;
    replace_text(mainwindow->clip_Text, escaped);
    if (!isNew)
        return;
    g_autofree char *line = g_strdup_printf("sessionAuditClipboard %s", escaped);
    pipewriter(g_UiStatus, line);
}

} // namespace

int CallClipboard(MainWindow *mainwindow)
{
    UI_ENTER();
    connect_signal(mainwindow->clipboard, "owner-change", ClipBoardText, mainwindow);
    replace_text(mainwindow->clip_Text, "");
    return 0;
}

void ClipBoardText(GtkClipboard *clipboard, GdkEvent *, MainWindow *mainwindow)
{
    UI_ENTER();
    gtk_clipboard_request_text(
        clipboard,
        [](GtkClipboard *source, const char *text, gpointer record) {
            ClipBoardCallBackFunction(source, text, static_cast<MainWindow *>(record));
        },
        mainwindow);
}

void ClipBoardCallBackFunction(GtkClipboard *, const char *text, MainWindow *mainwindow)
{
    UI_ENTER();
    if (!text)
        return;
    if (isTooLarge(text)) {
        UI_INFO("larger than text limit");
        return;
    }
    if (!mainwindow->isClipBoardAllowed) {
        UI_INFO("clipboard is not allowed");
        return;
    }
    // Every byte beyond ASCII is escaped; a sent chat text keeps them. Both are as the agent expects them.
    g_autofree char *escaped = g_uri_escape_string(text, nullptr, false);
    auditText(mainwindow, escaped);
    g_autofree char *pending = g_strdup_printf("clipboard %s", escaped);
    replace_text(mainwindow->clip_Board_Text, pending);
    const int comparison = g_strcmp0(text, mainwindow->clip_agent_text);
    UI_INFO("ui clipboard: %d", comparison);
    if (comparison != 0)
        show_clipboardPermission_dialog(mainwindow, mainwindow->clip_Board_Text);
}
