// The agent's reports on the session. Each is a row of the table: what the log says and what is done. Values for a
// callback are stored first, under the lock of the record they go to, and the callback is scheduled then.

#include "src/Protocol/messageHandler.h"

#include "Logger/logger.h"
#include "src/Dialog/dialogText.h"
#include "src/IdleThread/IdleThread.h"
#include "src/support.h"

#include <cstring>

namespace
{

/// A report split at its blanks; missing fields count as empty.
struct Report {
    char *const *fields;
    MainWindow *mainwindow;
    const char *field(guint index) const { return piece_or_empty(fields, index); }
};

struct StatusRow {
    const char *keyword;
    const char *logText; ///< or null: the action logs
    void (*act)(const Report &report);
};

template <std::atomic<bool> MainWindow::*permission, bool allowed> void setPermission(const Report &report)
{
    report.mainwindow->*permission = allowed;
    customeRolesHandling(report.mainwindow);
}

void setConnected(const Report &report)
{
    run_on_main(ButtonChangeStart, report.mainwindow);
}

void setDisconnected(const Report &report)
{
    run_on_main(ButtonChangeStop, report.mainwindow);
}

void endSession(const Report &)
{
    request_quit();
}

/// The name of a report that has exactly one, decoded; null otherwise.
OwnedText readTechnicianName(const Report &report)
{
    constexpr guint fieldCount = 3;
    if (g_strv_length(const_cast<char **>(report.fields)) != fieldCount)
        return nullptr;
    OwnedText name = unescape_text(report.field(2));
    // As it can be read: a name forges no line of the log.
    UI_INFO_AS("handleSessionStatusMessage", "received techincian name %s ",
               name ? plainName(name.get()).get() : "(null)");
    return name;
}

bool hasTechnicianName(MainWindow *mainwindow)
{
    const MutexLock lock(&mainwindow->mutex);
    return mainwindow->Techname != nullptr;
}

void setTechnicianName(const Report &report)
{
    if (!hasTechnicianName(report.mainwindow)) {
        UI_INFO_AS("handleSessionStatusMessage", "Tech name is Null ");
        OwnedText name = readTechnicianName(report);
        const MutexLock lock(&report.mainwindow->mutex);
        report.mainwindow->Techname = name.release();
    }
    run_on_main(ButtonChangeStart, report.mainwindow);
}

void forbidClipboard(const Report &report)
{
    report.mainwindow->isClipBoardAllowed = false;
}

bool containsFalse(const char *flag)
{
    return strstr(flag, "false") != nullptr;
}

void addParticipant(const Report &report)
{
    if (!*report.field(3))
        return; // nobody could ever refer to such a row
    const OwnedText name = unescape_text(report.field(2));
    {
        Expander *const mailbox = report.mainwindow->participants;
        const MutexLock lock(&report.mainwindow->mutex);
        replace_text(mailbox->Data, name ? name.get() : "");
        replace_text(mailbox->identifier, report.field(3));
        mailbox->blockButton = containsFalse(report.field(4));
    }
    run_on_main(AddParticipants, report.mainwindow);
}

void deleteParticipant(const Report &report)
{
    {
        Expander *const mailbox = report.mainwindow->participants;
        const MutexLock lock(&report.mainwindow->mutex);
        replace_text(mailbox->Data, report.field(2)); // stays encoded: only the ID counts
        replace_text(mailbox->identifier, report.field(3));
    }
    run_on_main(DeleteParticipants, report.mainwindow);
}

void modifyParticipant(const Report &report)
{
    {
        Expander *const mailbox = report.mainwindow->participants;
        const MutexLock lock(&report.mainwindow->mutex);
        replace_text(mailbox->identifier, report.field(2));
        mailbox->blockButton = containsFalse(report.field(3));
    }
    run_on_main(ModifyParticipants, report.mainwindow);
}

constexpr StatusRow statusRows[] = {
    {"Connected", " Screen Sharing is Started", setConnected},
    {"disconnected", " Screen Sharing is Stopped", setDisconnected},
    {"disableannotation", "Annotation is disabled", setPermission<&MainWindow::isAnnotationAllowed, false>},
    {"disablechat", "chat is disabled", setPermission<&MainWindow::isChatAllowed, false>},
    {"disablefiletransfer", "file transfer is disabled", setPermission<&MainWindow::isFileTransferAllowed, false>},
    {"disableswapscreen", "swapScreen is disabled", setPermission<&MainWindow::isSwapScreenAllowed, false>},
    {"enableannotation", "Annotation is enabled", setPermission<&MainWindow::isAnnotationAllowed, true>},
    {"enablechat", "chat is enabled", setPermission<&MainWindow::isChatAllowed, true>},
    {"enablefiletransfer", "file transfer is enabled", setPermission<&MainWindow::isFileTransferAllowed, true>},
    {"enableswapscreen", "swapScreen is enabled", setPermission<&MainWindow::isSwapScreenAllowed, true>},
    {"exit", "Exit received closing Ui", endSession},
    {"TECH-NAME", nullptr, setTechnicianName},
    {"disableClipboard", "Clipboard Has been disabled in agent", forbidClipboard},
    {"participantsAdd", "received participants", addParticipant},
    {"participantsDelete", "received participants delete", deleteParticipant},
    {"participantsModify", "received participants modify", modifyParticipant},
};

const StatusRow *findRow(const char *keyword)
{
    for (const StatusRow &row : statusRows)
        if (g_ascii_strcasecmp(keyword, row.keyword) == 0)
            return &row;
    return nullptr;
}

} // namespace

gboolean handleSessionStatusMessage(char *message, MainWindow *mainwindow)
{
    UI_ENTER();
    const OwnedText line(message);
    const OwnedTexts fields(g_strsplit(message, " ", -1));
    const Report report = {fields.get(), mainwindow};
    const StatusRow *const row = findRow(report.field(1));
    if (!row) {
        UI_INFO("Unhandled message  %s", report.field(1));
        return FALSE;
    }
    if (row->logText)
        UI_INFO("%s", row->logText);
    row->act(report);
    return FALSE;
}
