// The single-instance check. The name on the session bus is asked for first: registering beside a companion that is
// still starting would wait for its main loop, for up to 25 seconds.

#include "src/singleInstance.h"

namespace
{

constexpr char applicationId[] = "com.brindle.ui";

/// True when it is another program's: a registration that failed because its answer came late has taken the name for
/// this one all the same.
bool isNameTaken(GDBusConnection *bus)
{
    g_autoptr(GVariant) reply = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner",
        g_variant_new("(s)", applicationId), G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (!reply)
        return false;
    const char *owner = nullptr;
    g_variant_get(reply, "(&s)", &owner);
    return g_strcmp0(owner, g_dbus_connection_get_unique_name(bus)) != 0;
}

/// The connection, or null. A bus that goes away must not take the session with it.
GDBusConnection *stayWithout(GDBusConnection *bus)
{
    if (bus)
        g_dbus_connection_set_exit_on_close(bus, FALSE);
    return bus;
}

} // namespace

bool registerOnlyInstance(GApplication **application)
{
    g_autoptr(GDBusConnection) bus = stayWithout(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (bus && isNameTaken(bus))
        return false;
    *application = g_application_new(applicationId, GApplicationFlags(0));
    if (!g_application_register(*application, nullptr, nullptr))
        return !bus || !isNameTaken(bus);
    // A bus that could not be had for the first connection may be there by now.
    stayWithout(g_application_get_dbus_connection(*application));
    return !g_application_get_is_remote(*application);
}
