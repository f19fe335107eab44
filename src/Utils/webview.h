#pragma once
// The window of an AR session: a web view from a library that is looked for when it is needed.

#include "src/main.h"

/// Prefix of the line that starts an AR session.
extern const char *const PROTO_AR_SESSION;

/// A loaded web-view library; one for each AR window, freed with it.
struct WebKitLib {
    char *lib_path; ///< full path of the library, freed with `free`
    void *handle;   ///< as `dlopen` gave it
    GtkWidget *(*webview_new)();
    void (*webview_load_uri)(GtkWidget *webview, const char *url);
    void (*web_context_clear_cache)(gpointer context);    ///< may be null
    gpointer (*web_view_get_context)(GtkWidget *webview); ///< may be null
    ChatWindow *chatWindow;                               ///< borrowed
};

/// Notes the address and schedules the invitation. @param line owned copy of the agent's line. Thread: any.
void HandleLensSession(char *line, ChatWindow *chatwindow);
/// Opens the AR window. @return 0, or 1 when it is open already or no library can be used. Thread: main.
int LoadWebview(const char *url, ChatWindow *chatwindow);
/// Finds, loads and resolves the library. @return 1, or 0. Thread: main.
int webkitlib_init(WebKitLib *library);
/// Full path of the library to load, freed with `free`; null when there is none. Thread: main.
char *CheckForInstalledLibs();
/// Unloads the library. Nothing calls it: the library stays for the life of the process. Thread: main.
void webkitlib_close(WebKitLib *library);
/// The AR window has gone. Thread: main.
void on_destroy(GtkWidget *dialog, WebKitLib *library);
