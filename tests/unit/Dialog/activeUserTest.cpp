// Who sits at the machine, asked of a login manager that answers as a test says, on a bus of its own.

#include "src/Dialog/activeuser.h"
#include "src/support.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>

#include <gio/gio.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace
{

constexpr char sessionPath[] = "/org/freedesktop/login1/session/c1";
constexpr char failing[] = "";
constexpr char unanswered[] = "-";
constexpr gint64 libraryPatienceUs = 25'000'000; // a call without a limit of its own

/// Values of the properties by name, in GVariant text format; `failing` answers with an error, `unanswered` never.
using Properties = std::map<std::string, std::string>;

const Properties annUnderWayland = {
    {"ActiveSession", "('c1', objectpath '/org/freedesktop/login1/session/c1')"},
    {"Active", "true"},
    {"Type", "'wayland'"},
    {"Name", "'ann'"},
};

/// Answers property reads on a private bus.
class LoginManager
{
public:
    explicit LoginManager(Properties properties) : m_properties(std::move(properties))
    {
        m_bus = g_test_dbus_new(G_TEST_DBUS_NONE);
        g_test_dbus_up(m_bus);
        const char *const address = g_test_dbus_get_bus_address(m_bus);
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", address, TRUE);
        m_connection =
            g_dbus_connection_new_for_address_sync(address,
                                                   GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                                                   nullptr, nullptr, nullptr);
        g_dbus_connection_add_filter(m_connection, answer, this, nullptr);
        g_autoptr(GVariant) owned = g_dbus_connection_call_sync(
            m_connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", "org.freedesktop.login1", 0), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        EXPECT_TRUE(owned);
    }
    ~LoginManager()
    {
        g_dbus_connection_close_sync(m_connection, nullptr, nullptr);
        g_object_unref(m_connection);
        g_test_dbus_down(m_bus);
        g_object_unref(m_bus);
    }
    LoginManager(const LoginManager &) = delete;
    LoginManager &operator=(const LoginManager &) = delete;

private:
    /// Runs on the bus library's own thread.
    static GDBusMessage *answer(GDBusConnection *connection, GDBusMessage *message, gboolean isIncoming, gpointer self)
    {
        if (!isIncoming || g_strcmp0(g_dbus_message_get_member(message), "Get") != 0)
            return message;
        const char *interfaceName = nullptr;
        const char *property = nullptr;
        g_variant_get(g_dbus_message_get_body(message), "(&s&s)", &interfaceName, &property);
        const std::string value = static_cast<LoginManager *>(self)->m_properties.at(property);
        if (value != unanswered)
            send(connection, message, value);
        g_object_unref(message);
        return nullptr;
    }
    static void send(GDBusConnection *connection, GDBusMessage *message, const std::string &value)
    {
        g_autoptr(GDBusMessage) reply =
            value == failing
                ? g_dbus_message_new_method_error_literal(message, "org.freedesktop.DBus.Error.Failed", "no")
                : g_dbus_message_new_method_reply(message);
        if (value != failing) {
            g_autoptr(GVariant) parsed = g_variant_parse(nullptr, value.c_str(), nullptr, nullptr, nullptr);
            g_dbus_message_set_body(reply, g_variant_new("(v)", parsed));
        }
        g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    }

    Properties m_properties;
    GTestDBus *m_bus = nullptr;
    GDBusConnection *m_connection = nullptr;
};

/// A system bus that takes everybody in and never says a word.
class HungBus
{
public:
    explicit HungBus(const std::string &path)
    {
        struct sockaddr_un address = {AF_UNIX, {}};
        g_strlcpy(address.sun_path, path.c_str(), sizeof address.sun_path);
        EXPECT_EQ(bind(m_socket, reinterpret_cast<struct sockaddr *>(&address), sizeof address), 0);
        EXPECT_EQ(listen(m_socket, SOMAXCONN), 0);
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), TRUE);
    }
    ~HungBus() { close(m_socket); }
    HungBus(const HungBus &) = delete;
    HungBus &operator=(const HungBus &) = delete;

private:
    int m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

/// A system bus that takes everybody in, greets them, and falls silent.
class SilentBus
{
public:
    explicit SilentBus(const std::string &path)
    {
        g_autofree char *guid = g_dbus_generate_guid();
        m_server = g_dbus_server_new_sync(("unix:path=" + path).c_str(), G_DBUS_SERVER_FLAGS_RUN_IN_THREAD, guid,
                                          nullptr, nullptr, nullptr);
        g_signal_connect(m_server, "new-connection", G_CALLBACK(takeIn), this);
        g_dbus_server_start(m_server);
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), TRUE);
    }
    ~SilentBus()
    {
        g_dbus_server_stop(m_server);
        g_object_unref(m_server);
        if (m_guest) {
            g_dbus_connection_close_sync(m_guest, nullptr, nullptr);
            g_object_unref(m_guest);
        }
    }
    SilentBus(const SilentBus &) = delete;
    SilentBus &operator=(const SilentBus &) = delete;

private:
    /// Runs on a thread of the bus library.
    static gboolean takeIn(GDBusServer *, GDBusConnection *guest, SilentBus *self)
    {
        g_dbus_connection_add_filter(guest, swallow, nullptr, nullptr);
        self->m_guest = G_DBUS_CONNECTION(g_object_ref(guest));
        return TRUE;
    }
    static GDBusMessage *swallow(GDBusConnection *, GDBusMessage *message, gboolean isIncoming, gpointer)
    {
        if (!isIncoming)
            return message;
        g_object_unref(message);
        return nullptr;
    }

    GDBusServer *m_server;
    std::atomic<GDBusConnection *> m_guest = nullptr;
};

/// Ann's session with one property that differs.
Properties with(const char *property, const char *value)
{
    Properties properties = annUnderWayland;
    properties[property] = value;
    return properties;
}

class ActiveUser : public TestSession
{
protected:
    std::string ask(const Properties &properties)
    {
        const LoginManager manager(properties);
        return ask();
    }
    std::string ask()
    {
        const std::unique_ptr<char, decltype(&free)> user(getActiveUser(), free);
        return user ? user.get() : "(nobody)";
    }
    /// Microseconds until the answer that nobody sits there.
    gint64 waitForNobody()
    {
        const gint64 start = g_get_monotonic_time();
        EXPECT_EQ(ask(), "(nobody)");
        return g_get_monotonic_time() - start;
    }
    /// A log message starts with this text.
    bool logBegins(const std::string &start) const
    {
        return ::testing::Value(logMessages(), ::testing::Contains(::testing::StartsWith(start)));
    }
};

} // namespace

TEST_F(ActiveUser, IsTheOwnerOfTheGraphicalSession)
{
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(ask(annUnderWayland), "ann");
    EXPECT_EQ(ask(with("Type", "'x11'")), "ann");
    const std::string printed = std::string("Active session: id=c1 path=") + sessionPath + "\nActiveState: active\n";
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), printed + printed);
}

TEST_F(ActiveUser, OfATextConsoleIsNobody)
{
    for (const char *const type : {"'tty'", "'Wayland'", "''", "7", failing})
        EXPECT_EQ(ask(with("Type", type)), "(nobody)") << type;
    EXPECT_TRUE(logHas("Active session is not graphical (TTY). Exiting."));
    EXPECT_TRUE(logBegins("Get(Type) failed: (ignored) 0x"));
}

TEST_F(ActiveUser, OfASeatWithoutSessionIsNobody)
{
    for (const char *const session : {"('', objectpath '/')", "'text'", "('c1', 'no object path')"})
        EXPECT_EQ(ask(with("ActiveSession", session)), "(nobody)") << session;
    EXPECT_EQ(countLogMessages(logPath(), "No active session on seat0."), 3);
}

TEST_F(ActiveUser, OfAnInactiveSessionIsNobody)
{
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(ask(with("Active", "false")), "(nobody)");
    EXPECT_THAT(::testing::internal::GetCapturedStdout(), ::testing::HasSubstr("ActiveState: inactive\n"));
    EXPECT_EQ(ask(with("Active", "'yes'")), "(nobody)");
}

TEST_F(ActiveUser, WithoutANameIsNobody)
{
    for (const char *const name : {"''", "3"})
        EXPECT_EQ(ask(with("Name", name)), "(nobody)");
    EXPECT_EQ(countLogMessages(logPath(), "No username found in active session."), 2);
}

TEST_F(ActiveUser, IsNobodyWhenAPropertyCannotBeRead)
{
    const std::string session = std::string("Active session: id=c1 path=") + sessionPath + "\n";
    const std::pair<const char *, std::string> failures[] = {
        {"ActiveSession", "Active session: id=(null) path=(null)\n"},
        {"Active", session + "ActiveState: inactive\n"},
        {"Name", session + "ActiveState: active\n"}};
    for (const auto &[property, printed] : failures) {
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(ask(with(property, failing)), "(nobody)");
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), printed);
        EXPECT_TRUE(logBegins(std::string("Get(") + property + ") failed: 0x")) << property;
    }
}

TEST_F(ActiveUser, IsNobodyWithoutABusOrALoginManager)
{
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", TRUE);
    EXPECT_EQ(ask(), "(nobody)");
    EXPECT_TRUE(logBegins("g_bus_get_sync failed: 0x"));
    GTestDBus *const bus = g_test_dbus_new(G_TEST_DBUS_NONE);
    g_test_dbus_up(bus);
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", g_test_dbus_get_bus_address(bus), TRUE);
    EXPECT_EQ(ask(), "(nobody)");
    EXPECT_TRUE(logBegins("Get(ActiveSession) failed: 0x"));
    g_test_dbus_down(bus);
    g_object_unref(bus);
}

TEST_F(ActiveUser, IsNobodySoonWhenTheBusHangs)
{
    {
        const HungBus bus(home.file("bus"));
        EXPECT_LT(waitForNobody(), libraryPatienceUs / 2);
        EXPECT_TRUE(logBegins("g_bus_get_sync failed: 0x"));
    }
    EXPECT_EQ(ask(annUnderWayland), "ann") << "a later bus is not asked";
}

TEST_F(ActiveUser, IsNobodySoonWhenTheLoginManagerHangs)
{
    for (const char *const property : {"ActiveSession", "Active", "Type", "Name"}) {
        const LoginManager manager(with(property, unanswered));
        EXPECT_LT(waitForNobody(), libraryPatienceUs / 2);
        EXPECT_TRUE(logBegins(std::string("Get(") + property + ") failed: ")) << property;
    }
    EXPECT_EQ(ask(annUnderWayland), "ann") << "a later login manager is not asked";
}

TEST_F(ActiveUser, IsNobodySoonWhenTheBusFallsSilent)
{
    {
        const SilentBus bus(home.file("bus"));
        EXPECT_LT(waitForNobody(), libraryPatienceUs / 2);
    }
    EXPECT_EQ(ask(annUnderWayland), "ann") << "a later bus is not asked";
}

TEST_F(ActiveUser, HoldsUpNoEnd)
{
    const HungBus bus(home.file("bus"));
    const gint64 unhurriedUs = waitForNobody();
    request_quit();
    gint64 quickestUs = waitForNobody();
    for (int i = 0; i < 2; i++) // the machine may be busy
        quickestUs = std::min(quickestUs, waitForNobody());
    EXPECT_LT(quickestUs, unhurriedUs / 2);
}
