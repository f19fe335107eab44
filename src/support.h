#pragma once
// Ground floor: owned strings, locks, the hand-over to the main thread, the end of the main loop, and the few
// helpers that every module shares. Look here before writing one.

#include <gtk/gtk.h>

#include <ctime>
#include <memory>
#include <tuple>
#include <type_traits>

// ---------------------------------------------------------------------------------------------- ownership

/// Frees what travels in a `std::unique_ptr`: GLib strings and string arrays.
struct Deleter {
    void operator()(char *text) const { g_free(text); }
    void operator()(char **texts) const { g_strfreev(texts); }
};
using OwnedText = std::unique_ptr<char, Deleter>;
/// The pieces of a split text, ended by null.
using OwnedTexts = std::unique_ptr<char *, Deleter>;

/// Replaces an owned text by a copy of another, which may be (part of) the old one or null.
void replace_text(char *&field, const char *text);

/// A copy that widgets can show: invalid UTF-8 repaired, null made empty. Thread: any.
OwnedText displayable_text(const char *text);

/// A copy of a name that a label can lay out in no time: as `displayable_text`, and cut where only a hostile name goes
/// on. Thread: any.
OwnedText displayable_name(const char *name);

/// A copy of a text that a view can lay out in no time: as `displayable_text`, with invisible places to break in words
/// of thousands of characters, which are measured as a whole. Thread: any.
OwnedText breakable_text(const char *text);

/// A piece of a split line, or the empty text when the line has fewer pieces; borrowed from `pieces`.
const char *piece_or_empty(char *const *pieces, guint index);

/// Takes a reference that is held to the end of the process, for a widget that stays reachable through a record even
/// after its window is gone. @return the widget. Thread: main.
GtkWidget *keep_widget(GtkWidget *widget);

/// Replaces a widget that a record holds by another, which may be floating. Thread: main.
void replace_widget(GtkWidget *&field, GtkWidget *widget);

// --------------------------------------------------------------------------------------------------- locks

/// Holds a GLib mutex for its own lifetime.
class MutexLock
{
public:
    explicit MutexLock(GMutex *mutex) : m_mutex(mutex) { g_mutex_lock(m_mutex); }
    ~MutexLock() { g_mutex_unlock(m_mutex); }
    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

private:
    GMutex *m_mutex;
};

// --------------------------------------------------------------------------------------------- main thread

/// Makes the calling thread the one that owns the widgets. Thread: main, before anything else of this header.
void adopt_main_thread();

/// A callback with its record, put aside: `call` knows their types again.
struct MainCall {
    void (*call)(void (*callback)(), gpointer record);
    void (*callback)();
    gpointer record;
};
/// `call` for a callback with this record.
template <class Record> MainCall pack_call(gboolean (*callback)(Record *), Record *record)
{
    constexpr auto call = [](void (*untyped)(), gpointer data) {
        reinterpret_cast<gboolean (*)(Record *)>(untyped)(static_cast<Record *>(data));
    };
    return {call, reinterpret_cast<void (*)()>(callback), record};
}
/// Untyped bodies of `run_on_main` and `schedule_on_main`.
void run_on_main_untyped(const MainCall &call);
void schedule_on_main_untyped(const MainCall &call);

/// Runs a one-shot callback with its record on the main thread: at once when called there, else from the main loop,
/// in the order of the calls. What the callback returns is ignored.
/// @param record  must live until the callback has run
/// Thread: any.
template <class Record> void run_on_main(gboolean (*callback)(Record *), std::type_identity_t<Record> *record)
{
    run_on_main_untyped(pack_call<Record>(callback, record));
}

/// Same, but waits its turn even when called on the main thread itself.
template <class Record> void schedule_on_main(gboolean (*callback)(Record *), std::type_identity_t<Record> *record)
{
    schedule_on_main_untyped(pack_call<Record>(callback, record));
}

/// Connects a handler whose last parameter must be the record's type; a wrong record does not compile.
template <class Return, class... Arguments, class Record>
gulong connect_signal(gpointer object, const char *signal, Return (*handler)(Arguments...), Record *record)
{
    using Last = std::tuple_element_t<sizeof...(Arguments) - 1, std::tuple<Arguments...>>;
    static_assert(std::is_same_v<Last, Record *>, "the handler's last parameter is not this record");
    return g_signal_connect(object, signal, G_CALLBACK(handler), const_cast<std::remove_const_t<Record> *>(record));
}

/// Same, and frees the record (a heap text or other `g_malloc` memory) with the connection.
template <class Return, class... Arguments>
gulong connect_signal_owning(gpointer object, const char *signal, Return (*handler)(Arguments...), OwnedText text)
{
    using Last = std::tuple_element_t<sizeof...(Arguments) - 1, std::tuple<Arguments...>>;
    static_assert(std::is_same_v<Last, const char *>, "the handler's last parameter is not a borrowed text");
    return g_signal_connect_data(
        object, signal, G_CALLBACK(handler), text.release(), [](gpointer owned, GClosure *) { g_free(owned); },
        GConnectFlags(0));
}

/// A handler of a button with its record; `call` knows their types again.
struct ClickCall {
    void (*call)(void (*handler)(), GtkWidget *button, gpointer record);
    void (*handler)();
    gpointer record;
};
/// Untyped body of `connect_nested_click`.
void connect_nested_click_untyped(GtkWidget *button, const ClickCall &call);

/// Connects "clicked" to a handler that runs a loop of its own, a file chooser's. The handler is called from the main
/// loop, before any further input: assistive technology is not served again until the press that it asked for has
/// returned. A click that comes before the last one was handled counts as that one. Thread: main.
/// @param record  must live as long as the button
template <class Record>
void connect_nested_click(GtkWidget *button, void (*handler)(GtkWidget *, Record *),
                          std::type_identity_t<Record> *record)
{
    constexpr auto call = [](void (*untyped)(), GtkWidget *clicked, gpointer data) {
        reinterpret_cast<void (*)(GtkWidget *, Record *)>(untyped)(clicked, static_cast<Record *>(data));
    };
    connect_nested_click_untyped(button, {call, reinterpret_cast<void (*)()>(handler), record});
}

// ------------------------------------------------------------------------------------- end of the main loop

/// Asks the program to end: the main loop returns, and so does the nested loop of a dialog run by
/// `run_nested_dialog`. A request made before the loop runs is kept. Further requests change nothing.
/// Thread: any, at any moment.
void request_quit();

/// Names what the first `request_quit` does besides, in its thread. Thread: main, before any other may ask for the end.
void on_quit_request(void (*call)());

/// True from the first `request_quit` on. Thread: any.
bool quit_requested();

/// Runs the main loop until `request_quit`; returns at once when that was called before. Thread: main.
void run_main_loop();

/// `gtk_dialog_run` that a quit request ends with GTK_RESPONSE_CANCEL. The caller destroys the dialog.
/// Thread: main.
int run_nested_dialog(GtkDialog *dialog);

// ------------------------------------------------------------------------------------------- small helpers

/// Fills `out` with the current local time. Thread: any.
void time_data(struct tm *out);

/// 1 for a directory, 0 for a regular file, 2 otherwise or when the path can't be examined. Thread: any.
int isDirectory(const char *path);

/// True when the session runs under Wayland: XDG_SESSION_TYPE equals "wayland", ASCII case ignored. Thread: any.
bool isWayland();

/// Writes a text to standard output unless that would wait for somebody to read it: then the text is dropped.
/// Thread: any.
void print_output(const char *text);

/// The path of a URI-escaped or plain text field, decoded; null when it can't be decoded. Thread: any.
OwnedText unescape_text(const char *escaped);
