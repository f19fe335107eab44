// The single-instance check. The name on the session bus is asked for first: registering beside a companion that is
// still starting would wait for its main loop, for up to 25 seconds.

#include "src/singleInstance.h"

namespace
{

constexpr char applicationId[] = "com.brindle.ui";

bool isNameOwned(GDBusConnection *bus)
{
    g_autoptr(GVariant) reply = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        g_variant_new("(s)", applicationId), G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    gboolean owned = FALSE;
    if (reply)
        g_variant_get(reply, "(b)", &owned);
    return owned;
}

} // namespace

bool registerOnlyInstance(GApplication **application)
{
    g_autoptr(GDBusConnection) bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (bus) {
        // A bus that goes away must not take the session with it.
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        if (isNameOwned(bus))
            return false;
    }
    *application = g_application_new(applicationId, GApplicationFlags(0));
    if (g_application_register(*application, nullptr, nullptr))
        return !g_application_get_is_remote(*application);
    return !bus || !isNameOwned(bus);
}
