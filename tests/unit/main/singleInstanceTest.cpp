// The single-instance check against a real session bus.

#include "src/singleInstance.h"

#include "tests/support/testSession.h"

#include <gtest/gtest.h>

namespace
{
constexpr char companionName[] = "com.brindle.ui";

class SingleInstance : public TestSession
{
protected:
    void SetUp() override
    {
        TestSession::SetUp();
        g_test_dbus_up(m_bus);
    }
    void TearDown() override
    {
        g_clear_object(&m_application);
        g_test_dbus_down(m_bus);
        g_object_unref(m_bus);
        TestSession::TearDown();
    }
    /// Takes the program's name on a connection; it is gone with that.
    static void takeName(GDBusConnection *connection)
    {
        g_autoptr(GVariant) reply = g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", companionName, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        ASSERT_NE(reply, nullptr);
    }
    bool isOnly() { return registerOnlyInstance(&m_application); }

    GTestDBus *m_bus = g_test_dbus_new(G_TEST_DBUS_NONE);
    GApplication *m_application = nullptr;
};
} // namespace

TEST_F(SingleInstance, IsTheOnlyOneOnItsBus)
{
    EXPECT_TRUE(isOnly());
}

TEST_F(SingleInstance, GivesWayToAnother)
{
    g_autoptr(GDBusConnection) another =
        g_dbus_connection_new_for_address_sync(g_test_dbus_get_bus_address(m_bus),
                                               GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                                    G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                                               nullptr, nullptr, nullptr);
    ASSERT_NE(another, nullptr);
    takeName(another);
    EXPECT_FALSE(isOnly());
}

TEST_F(SingleInstance, DoesNotGiveWayToItself)
{
    g_autoptr(GDBusConnection) own = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    ASSERT_NE(own, nullptr);
    g_dbus_connection_set_exit_on_close(own, FALSE);
    takeName(own);
    EXPECT_TRUE(isOnly());
}
