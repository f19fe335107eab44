// Asks the login manager over the system bus who owns the active graphical session of seat0. The bus functions are
// looked up at run time. A bus or manager that hangs is given up soon, as the window does nothing meanwhile; the thread
// that asks it is left behind. The log texts end in a newline of their own, on purpose.

#include "src/Dialog/activeuser.h"

#include "Logger/logger.h"
#include "src/support.h"

#include <gio/gio.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <utility>

namespace
{
/// A function that is looked up anew before each question, always found in the same place: a thread that was left
/// behind may be using it meanwhile.
template <class Function> class Resolved
{
public:
    void set(Function function) { m_function = function; }
    operator Function() const { return m_function; }

private:
    std::atomic<Function> m_function;
};
Resolved<decltype(&g_bus_get_sync)> p_g_bus_get_sync;
Resolved<decltype(&g_dbus_connection_call_sync)> p_g_dbus_connection_call_sync;
Resolved<decltype(&g_variant_new)> p_g_variant_new;
Resolved<decltype(&g_variant_get)> p_g_variant_get;
Resolved<decltype(&g_variant_unref)> p_g_variant_unref;
Resolved<decltype(&g_object_unref)> p_g_object_unref;
Resolved<decltype(&g_error_free)> p_g_error_free;

constexpr int missingLibraryStatus = 2;
constexpr char seatPath[] = "/org/freedesktop/login1/seat/seat0";
constexpr char seatInterface[] = "org.freedesktop.login1.Seat";
constexpr char sessionInterface[] = "org.freedesktop.login1.Session";

struct BusDeleter {
    void operator()(GDBusConnection *bus) const { p_g_object_unref(bus); }
};
struct VariantDeleter {
    void operator()(GVariant *variant) const { p_g_variant_unref(variant); }
};
struct TextDeleter {
    void operator()(char *text) const { g_free(text); }
};
using Bus = std::unique_ptr<GDBusConnection, BusDeleter>;
using Variant = std::unique_ptr<GVariant, VariantDeleter>;
using Text = std::unique_ptr<char, TextDeleter>;

/// Where the bus tells the thread that it has closed, which ends the program until the bus is told otherwise: not in
/// the main thread's context, which runs by itself.
class OwnContext
{
public:
    OwnContext() { g_main_context_push_thread_default(m_context); }
    ~OwnContext()
    {
        while (g_main_context_iteration(m_context, FALSE)) {
            // what is left holds the bus
        }
        g_main_context_pop_thread_default(m_context);
        g_main_context_unref(m_context);
    }
    OwnContext(const OwnContext &) = delete;
    OwnContext &operator=(const OwnContext &) = delete;

private:
    GMainContext *m_context = g_main_context_new();
};

/// One question after the user, which a thread of its own asks: a bus that falls silent may keep it for long.
class Lookup
{
public:
    Lookup()
    {
        g_mutex_init(&m_mutex);
        g_cond_init(&m_isOverCondition);
    }
    ~Lookup()
    {
        free(m_user);
        g_object_unref(m_cancellable);
        g_cond_clear(&m_isOverCondition);
        g_mutex_clear(&m_mutex);
    }
    Lookup(const Lookup &) = delete;
    Lookup &operator=(const Lookup &) = delete;
    /// Borrowed; cancelled when an answer has not come in time. Most calls end by that, but not all of the bus library.
    GCancellable *cancellable() const { return m_cancellable; }
    void noteAnswer()
    {
        const MutexLock lock(&m_mutex);
        m_answers++;
    }
    /// Takes the user's name over; null for nobody.
    void finish(char *user)
    {
        {
            const MutexLock lock(&m_mutex);
            m_user = user;
            m_isOver = true;
        }
        g_cond_signal(&m_isOverCondition);
    }
    /// The user's name for `free`; null for nobody, or when no answer comes or the program is to end. Thread: main.
    char *waitForUser()
    {
        if (!waitForAnswers())
            g_cancellable_cancel(m_cancellable);
        const MutexLock lock(&m_mutex);
        for (int step = 0; step < lastWords && !m_isOver; step++)
            waitStep();
        return std::exchange(m_user, nullptr);
    }

private:
    // Steps are counted, no clock is read: after a stop of the whole machine the manager has its time again.
    static constexpr gint64 stepUs = 50'000;
    static constexpr int longestSilence = 40;
    static constexpr int lastWords = 10; ///< steps to log what was cancelled

    void waitStep() { g_cond_wait_until(&m_isOverCondition, &m_mutex, g_get_monotonic_time() + stepUs); }
    /// False when one has not come in time.
    bool waitForAnswers()
    {
        const MutexLock lock(&m_mutex);
        for (int silent = 0; silent < longestSilence && !m_isOver && !quit_requested();) {
            const int before = m_answers;
            waitStep();
            silent = m_answers == before ? silent + 1 : 0;
        }
        return m_isOver;
    }

    GCancellable *m_cancellable = g_cancellable_new();
    GMutex m_mutex;
    GCond m_isOverCondition;
    // Under `m_mutex`.
    int m_answers = 0;
    bool m_isOver = false;
    char *m_user = nullptr;
};

/// The way to the login manager.
struct Manager {
    Lookup &lookup;
    Bus bus;
};

/// One property of an object of the login manager.
struct Property {
    const char *path;
    const char *interfaceName;
    const char *name;
    const char *type; ///< of its value
};

void *try_open(const char *library)
{
    UI_ENTER();
    void *handle = dlopen(library, RTLD_NOW);
    if (handle)
        return handle;
    UI_INFO("dlopen %s failed: %s\n", library, dlerror());
    exit(missingLibraryStatus);
}

void *req_sym(void *library, const char *name)
{
    UI_ENTER();
    void *symbol = dlsym(library, name);
    if (symbol)
        return symbol;
    UI_INFO("dlsym failed for %s: %s\n", name, dlerror());
    exit(missingLibraryStatus);
}

template <class Function> void resolve(Resolved<Function> &slot, void *library, const char *name)
{
    slot.set(reinterpret_cast<Function>(req_sym(library, name)));
}

void loadFunctions()
{
    void *glib = try_open("libglib-2.0.so.0");
    void *gobject = try_open("libgobject-2.0.so.0");
    void *gio = try_open("libgio-2.0.so.0");
    resolve(p_g_bus_get_sync, gio, "g_bus_get_sync");
    resolve(p_g_dbus_connection_call_sync, gio, "g_dbus_connection_call_sync");
    resolve(p_g_variant_new, glib, "g_variant_new");
    resolve(p_g_variant_get, glib, "g_variant_get");
    resolve(p_g_variant_unref, glib, "g_variant_unref");
    resolve(p_g_object_unref, gobject, "g_object_unref");
    resolve(p_g_error_free, glib, "g_error_free");
}

/// Logs a failed step and frees its error.
void reportFailure(const char *function, const char *step, GError *error)
{
    UI_INFO_AS(function, "%s failed: %p\n", step, static_cast<void *>(error));
    if (error)
        p_g_error_free(error);
}

Bus connectToSystemBus(Lookup &lookup)
{
    GError *error = nullptr;
    Bus bus(p_g_bus_get_sync(G_BUS_TYPE_SYSTEM, lookup.cancellable(), &error));
    lookup.noteAnswer();
    if (bus) // a restart of the bus must not end the session
        g_object_set(bus.get(), "exit-on-close", FALSE, nullptr);
    else
        reportFailure("getActiveUser", "g_bus_get_sync", error);
    return bus;
}

/// Reads a property. @return its value; null when it has another type, or after an error.
Variant readProperty(const Manager &manager, const Property &property, GError **error)
{
    const Variant reply(p_g_dbus_connection_call_sync(
        manager.bus.get(), "org.freedesktop.login1", property.path, "org.freedesktop.DBus.Properties", "Get",
        p_g_variant_new("(ss)", property.interfaceName, property.name), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
        manager.lookup.cancellable(), error));
    manager.lookup.noteAnswer();
    if (!reply || !g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(v)")))
        return nullptr;
    GVariant *value = nullptr;
    p_g_variant_get(reply.get(), "(v)", &value);
    Variant owned(value);
    return g_variant_is_of_type(value, G_VARIANT_TYPE(property.type)) ? std::move(owned) : nullptr;
}

Text readText(const Manager &manager, const Property &property, GError **error)
{
    const Variant value = readProperty(manager, property, error);
    char *text = nullptr;
    if (value)
        p_g_variant_get(value.get(), "s", &text);
    return Text(text);
}

/// Path of the seat's active session, or null.
Text findSession(const Manager &manager)
{
    GError *error = nullptr;
    const Variant value = readProperty(manager, {seatPath, seatInterface, "ActiveSession", "(so)"}, &error);
    char *id = nullptr;
    char *path = nullptr;
    if (value)
        p_g_variant_get(value.get(), "(so)", &id, &path);
    const Text ownedId(id);
    Text ownedPath(path);
    g_autofree char *line =
        g_strdup_printf("Active session: id=%s path=%s\n", id ? id : "(null)", path ? path : "(null)");
    print_output(line);
    if (error) {
        reportFailure("getActiveUser", "Get(ActiveSession)", error);
        return nullptr;
    }
    // A seat without a session says so with an empty id and the root as its path.
    if (path && *path && strcmp(path, "/") != 0)
        return ownedPath;
    UI_INFO_AS("getActiveUser", "No active session on seat0.\n");
    return nullptr;
}

bool isActive(const Manager &manager, const char *path)
{
    GError *error = nullptr;
    const Variant value = readProperty(manager, {path, sessionInterface, "Active", "b"}, &error);
    gboolean active = FALSE;
    if (value)
        p_g_variant_get(value.get(), "b", &active);
    print_output(active ? "ActiveState: active\n" : "ActiveState: inactive\n");
    if (error) {
        reportFailure("getActiveUser", "Get(Active)", error);
        return false;
    }
    return active;
}

bool is_graphical_session(const Manager &manager, const char *path)
{
    UI_ENTER();
    GError *error = nullptr;
    const Text type = readText(manager, {path, sessionInterface, "Type", "s"}, &error);
    if (error) {
        UI_INFO("Get(Type) failed: (ignored) %p\n", static_cast<void *>(error));
        p_g_error_free(error);
    }
    return type && (strcmp(type.get(), "x11") == 0 || strcmp(type.get(), "wayland") == 0);
}

/// A copy of the session's user name for `free`, or null.
char *readUserName(const Manager &manager, const char *path)
{
    GError *error = nullptr;
    const Text name = readText(manager, {path, sessionInterface, "Name", "s"}, &error);
    if (error) {
        reportFailure("getActiveUser", "Get(Name)", error);
        return nullptr;
    }
    if (name && *name.get())
        return strdup(name.get());
    UI_INFO_AS("getActiveUser", "No username found in active session.\n");
    return nullptr;
}

/// Name of the seat's user for `free`, or null.
char *askForUser(Lookup &lookup)
{
    const OwnContext context;
    const Manager manager = {lookup, connectToSystemBus(lookup)};
    if (!manager.bus)
        return nullptr;
    const Text session = findSession(manager);
    if (!session || !isActive(manager, session.get()))
        return nullptr;
    if (!is_graphical_session(manager, session.get())) {
        UI_INFO_AS("getActiveUser", "Active session is not graphical (TTY). Exiting.\n");
        return nullptr;
    }
    return readUserName(manager, session.get());
}

/// Body of "Brindle-lookup".
gpointer ask(gpointer data)
{
    const std::unique_ptr<std::shared_ptr<Lookup>> lookup(static_cast<std::shared_ptr<Lookup> *>(data));
    (*lookup)->finish(askForUser(**lookup));
    return nullptr;
}
} // namespace

char *getActiveUser()
{
    UI_ENTER();
    loadFunctions();
    const auto lookup = std::make_shared<Lookup>();
    g_thread_unref(g_thread_new("Brindle-lookup", ask, new std::shared_ptr<Lookup>(lookup)));
    return lookup->waitForUser();
}
