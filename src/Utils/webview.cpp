// AR sessions: the agent's line becomes an invitation in the conversation, a click on it a small window with a web
// view. At most one such window is open.

#include "src/Utils/webview.h"

#include "Logger/logger.h"
#include "src/Chat/chatView.h"
#include "src/Utils/dialogPlacement.h"
#include "src/support.h"

#include <cstdlib>

const char *const PROTO_AR_SESSION = "AR_SESSION";

namespace
{

constexpr Size arWindow = {320, 219};

void noteSessionUrl(ChatWindow *chatwindow, const char *url)
{
    const MutexLock lock(&chatwindow->mutex);
    replace_text(chatwindow->ArSessionUrl, url);
}

/// Loads the library for one window; null when none can be used.
WebKitLib *newLibrary(ChatWindow *chatwindow)
{
    auto *const library = g_new0(WebKitLib, 1);
    if (webkitlib_init(library) == 0) {
        g_free(library);
        return nullptr;
    }
    library->chatWindow = chatwindow;
    return library;
}

void clearCache(const WebKitLib *library, GtkWidget *webview)
{
    if (!library->web_view_get_context || !library->web_context_clear_cache)
        return;
    library->web_context_clear_cache(library->web_view_get_context(webview));
    UI_INFO_AS("LoadWebview", "Cleared webview cache");
}

GtkWidget *newArWindow(GtkWidget *webview)
{
    GtkWidget *const dialog = gtk_dialog_new();
    GtkWidget *const content = gtk_dialog_get_content_area(GTK_DIALOG(dialog));
    gtk_box_pack_start(GTK_BOX(content), webview, true, true, 0);
    gtk_window_set_default_size(GTK_WINDOW(dialog), arWindow.width, arWindow.height);
    gtk_window_set_resizable(GTK_WINDOW(dialog), false);
    gtk_window_set_title(GTK_WINDOW(dialog), "Brindle - AR Session");
    return dialog;
}

void keepApart(GtkWindow *dialog)
{
    gtk_window_set_transient_for(dialog, nullptr);
    gtk_window_set_modal(dialog, false);
    gtk_window_set_keep_above(dialog, true);
    gtk_window_set_skip_taskbar_hint(dialog, true);
}

/// Puts the window beside the one that the conversation is in.
void placeBesideChat(GtkWidget *dialog, const ChatWindow *chatwindow)
{
    GtkWidget *const parent = chatwindow->chat_area ? gtk_widget_get_toplevel(chatwindow->chat_area) : nullptr;
    int x = 0, y = 0;
    if (parent && GTK_IS_WINDOW(parent) && choose_dialog_position(parent, dialog, &x, &y))
        set_dialog_position(dialog, x, y);
}

} // namespace

void HandleLensSession(char *line, ChatWindow *chatwindow)
{
    UI_ENTER();
    const OwnedText owned(line);
    const OwnedTexts words(g_strsplit(line, " ", -1));
    noteSessionUrl(chatwindow, piece_or_empty(words.get(), 1));
    auto *const data = g_new0(_AddLenSessionData, 1);
    data->chatwindow = chatwindow;
    if (g_strv_length(words.get()) > 2)
        data->technicianName = g_strdup(words.get()[2]);
    schedule_on_main(AddLenSession, data);
}

int LoadWebview(const char *url, ChatWindow *chatwindow)
{
    UI_ENTER();
    UI_INFO("Hello, Webview!\n %s", url);
    if (chatwindow->isARSessionInitiated) {
        UI_INFO("AR Session DIALOG is already initiated.");
        return 1;
    }
    WebKitLib *const library = newLibrary(chatwindow);
    if (!library)
        return 1;
    GtkWidget *const webview = library->webview_new();
    if (!webview) {
        free(library->lib_path);
        g_free(library);
        return 1; // a library that can't make a view is none
    }
    GtkWidget *const dialog = newArWindow(webview);
    clearCache(library, webview);
    library->webview_load_uri(webview, url);
    keepApart(GTK_WINDOW(dialog));
    chatwindow->isARSessionInitiated = true;
    placeBesideChat(dialog, chatwindow);
    connect_signal(dialog, "destroy", on_destroy, library);
    gtk_widget_show_all(dialog);
    return 0;
}

void on_destroy(GtkWidget *, WebKitLib *library)
{
    UI_ENTER();
    library->chatWindow->isARSessionInitiated = false;
    // The library itself stays loaded: it does not survive being taken out of a process that has used it.
    free(library->lib_path);
    *library = WebKitLib{};
    g_free(library);
}
