// The registry of open dialogs: a list of kinds behind an entry that is never removed, so that the list's head stays
// the same for everybody who holds it. Each kind is the entry's own copy.

#include "src/Utils/dialogPlacement.h"

#include "Logger/logger.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/support.h"

#include <optional>

static GList *findKind(GList *list, const char *kind)
{
    for (GList *entry = list; entry; entry = entry->next)
        if (entry->data && kind && g_ascii_strcasecmp(static_cast<const char *>(entry->data), kind) == 0)
            return entry;
    return nullptr;
}

static void unlinkKind(GList *list, GMutex *mutex, const char *kind)
{
    const MutexLock lock(mutex);
    GList *const entry = findKind(list->next, kind);
    if (!entry)
        return;
    g_free(entry->data);
    [[maybe_unused]] const GList *const head = g_list_delete_link(list, entry); // as before
}

int is_dialog_active(GList *list, GMutex *mutex, const char *kind)
{
    UI_ENTER();
    std::optional<MutexLock> lock;
    if (mutex)
        lock.emplace(mutex);
    return findKind(list, kind) ? 1 : 0;
}

int add_active_dialog(GList *list, GMutex *mutex, const char *kind)
{
    UI_ENTER();
    const MutexLock lock(mutex);
    if (is_dialog_active(list, nullptr, kind))
        return 0;
    [[maybe_unused]] const GList *const head = g_list_append(list, g_strdup(kind)); // as before
    return 1;
}

int delete_active_dialog(GList *list, GMutex *mutex, const char *kind)
{
    UI_ENTER();
    g_autofree char *text = g_strdup_printf("delete_dialog %s ", kind);
    unlinkKind(list, mutex, kind);
    // Sent without the lock: the dispatcher asks the registry while this waits for the agent.
    encodeDialogeResponseMessage(text, g_UiStatus);
    return 1;
}
