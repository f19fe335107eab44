// The single-instance check against a real session bus.

#include "src/singleInstance.h"

#include "tests/support/testSession.h"

#include <gio/gunixsocketaddress.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <thread>

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
    /// Puts one into the place of the bus that hangs up on its first caller; the next one finds the bus.
    std::thread hangUpFirst()
    {
        const std::string place = home.file("bus"), rude = home.file("rude");
        const std::string address = g_test_dbus_get_bus_address(m_bus), key = "path=";
        const size_t begin = address.find(key) + key.size();
        const std::string bus = address.substr(begin, address.find(',', begin) - begin);
        g_autoptr(GSocket) socket =
            g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr);
        g_autoptr(GSocketAddress) own = g_unix_socket_address_new(rude.c_str());
        EXPECT_TRUE(g_socket_bind(socket, own, TRUE, nullptr) && g_socket_listen(socket, nullptr));
        EXPECT_EQ(symlink(rude.c_str(), place.c_str()), 0);
        g_setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + place).c_str(), TRUE);
        return std::thread([=, listening = g_steal_pointer(&socket)] {
            g_autoptr(GSocket) caller = g_socket_accept(listening, nullptr, nullptr);
            EXPECT_NE(caller, nullptr);
            g_object_unref(listening);
            unlink(place.c_str());
            EXPECT_EQ(symlink(bus.c_str(), place.c_str()), 0);
        });
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

TEST_F(SingleInstance, StaysWithoutTheBusThatItsSecondConnectionReached)
{
    std::thread rude = hangUpFirst();
    EXPECT_TRUE(isOnly());
    rude.join();
    GDBusConnection *const connection = g_application_get_dbus_connection(m_application);
    ASSERT_NE(connection, nullptr);
    EXPECT_FALSE(g_dbus_connection_get_exit_on_close(connection));
}
