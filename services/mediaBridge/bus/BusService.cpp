#include "bus/BusService.h"

#include "Log.h"
#include "bus/Introspection.h"
#include "core/ObjectPath.h"

#include <algorithm>
#include <malloc.h>

namespace bridge {

namespace {

constexpr const char *daemonName = "org.freedesktop.DBus";
constexpr size_t mebibyte = size_t{1} << 20;
constexpr unsigned quietMs = 1'000;

std::string addressOf(const std::string &where, GError **error)
{
    if (where == "session" || where == "system") {
        const GBusType type = where == "session" ? G_BUS_TYPE_SESSION : G_BUS_TYPE_SYSTEM;
        return takeString(g_dbus_address_get_for_bus_sync(type, nullptr, error));
    }
    return where;
}

/// At `parent` itself or below it.
bool isWithin(std::string_view path, std::string_view parent)
{
    return path.substr(0, parent.size()) == parent
        && (path.size() == parent.size() || path[parent.size()] == '/');
}

/// Objects on the way to the manager can be introspected too.
bool isOurPath(std::string_view path)
{
    return isWithin(path, managerPath)
        || (path.size() < managerPath.size() && (path == "/" || isWithin(managerPath, path)));
}

} // namespace

/// A call on its way from the bus's thread to the main one.
struct BusService::QueuedCall
{
    BusService *service;
    Ref<GDBusConnection> connection;
    Ref<GDBusMessage> message;
};

BusService::~BusService()
{
    if (!m_connection)
        return;
    g_signal_handlers_disconnect_by_data(m_connection.get(), this);
    if (m_filter != 0)
        g_dbus_connection_remove_filter(m_connection.get(), m_filter);
    if (m_nameLost != 0)
        g_dbus_connection_signal_unsubscribe(m_connection.get(), m_nameLost);
    for (const auto &[sender, watch] : m_clients)
        g_bus_unwatch_name(watch);
    // Answers that were sent last must not be lost with the connection.
    g_dbus_connection_flush_sync(m_connection.get(), nullptr, nullptr);
}

std::string BusService::connect(const std::string &where)
{
    GError *error = nullptr;
    const std::string address = addressOf(where, &error);
    if (!error) {
        m_connection = Ref<GDBusConnection>(g_dbus_connection_new_for_address_sync(address.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, &error));
    }
    if (error)
        return "Can't reach the D-Bus \"" + where + "\": " + takeMessage(error)
            + ". Start a bus (dbus-run-session does) or name one with --bus.";
    // A system bus disconnects whoever sends a message above 32 MiB; elsewhere an array ends at 64.
    m_maxReplyBytes = (where == "system" ? 30 : 60) * mebibyte;
    g_signal_connect(m_connection.get(), "closed",
        G_CALLBACK(+[](GDBusConnection *, gboolean, GError *, BusService *self) {
            self->onEnd("The bus has gone away.");
        }),
        this);
    m_filter = g_dbus_connection_add_filter(m_connection.get(), &BusService::filter, this, nullptr);
    return {};
}

std::string BusService::ownName(bool replace)
{
    enum { allowReplacement = 1, replaceExisting = 2, doNotQueue = 4 };
    enum { primaryOwner = 1, alreadyOwner = 4 };
    const guint flags = allowReplacement | doNotQueue | (replace ? replaceExisting : 0);
    GError *error = nullptr;
    GVariant *answer = g_dbus_connection_call_sync(m_connection.get(), daemonName,
        "/org/freedesktop/DBus", daemonName, "RequestName", g_variant_new("(su)", busName, flags),
        G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    if (!answer)
        return std::string("The bus doesn't give the name ") + busName + ": " + takeMessage(error);
    guint result = 0;
    g_variant_get(answer, "(u)", &result);
    g_variant_unref(answer);
    if (result != primaryOwner && result != alreadyOwner)
        return std::string("Another media service is running: ") + busName
            + " is taken on this bus. Use that one, or stop it first.";

    m_nameLost = g_dbus_connection_signal_subscribe(
        m_connection.get(), daemonName, daemonName, "NameLost", "/org/freedesktop/DBus", busName,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection *, const char *, const char *, const char *, const char *, GVariant *,
            gpointer self) {
            static_cast<BusService *>(self)->onEnd("Another media service has taken the name.");
        },
        this, nullptr);
    return {};
}

GDBusMessage *BusService::filter(
    GDBusConnection *connection, GDBusMessage *message, gboolean incoming, gpointer self)
{
    // Runs on the bus's thread. Ping and the machine id are answered by GIO.
    const char *path = g_dbus_message_get_path(message);
    const char *interface = g_dbus_message_get_interface(message);
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL
        || !path || !isOurPath(path) || g_strcmp0(interface, interfaces::peer) == 0)
        return message;
    auto *queued = new QueuedCall{static_cast<BusService *>(self),
        Ref<GDBusConnection>::share(connection), Ref<GDBusMessage>(message)};
    g_main_context_invoke_full(
        nullptr, G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean {
            auto *call = static_cast<QueuedCall *>(data);
            call->service->receive(
                std::make_shared<BusCall>(call->connection.get(), call->message.get()));
            return G_SOURCE_REMOVE;
        },
        queued, [](gpointer data) { delete static_cast<QueuedCall *>(data); });
    return nullptr;
}

void BusService::receive(BusCallPtr call)
{
    countClient(call->sender());
    m_calls.erase(std::remove_if(m_calls.begin(), m_calls.end(),
                      [](const auto &known) { return known.expired(); }),
        m_calls.end());
    m_calls.push_back(call);
    giveMemoryBackWhenQuiet();
    onCall(call);
}

/// A long list takes many times what the service needs between calls; the allocator would keep it.
void BusService::giveMemoryBackWhenQuiet()
{
    m_quiet.start(quietMs, [this] {
        const bool isBusy = std::any_of(
            m_calls.begin(), m_calls.end(), [](const auto &call) { return !call.expired(); });
        if (isBusy) {
            giveMemoryBackWhenQuiet();
            return;
        }
        malloc_trim(0);
        logDebug("quiet, " + std::to_string(mallinfo2().uordblks >> 10) + " KiB in use");
    });
}

void BusService::countClient(const std::string &sender)
{
    if (sender.empty() || m_clients.count(sender) != 0)
        return;
    const bool isFirst = m_clients.empty();
    m_clients[sender] = g_bus_watch_name_on_connection(
        m_connection.get(), sender.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE, nullptr,
        [](GDBusConnection *, const char *name, gpointer self) {
            const std::string gone = name;
            static_cast<BusService *>(self)->cancelCalls(std::string(managerPath), gone);
            static_cast<BusService *>(self)->releaseClient(gone);
        },
        this, nullptr);
    if (isFirst && onFirstClient)
        onFirstClient();
}

void BusService::releaseClient(const std::string &sender)
{
    const auto client = m_clients.find(sender);
    if (client == m_clients.end())
        return;
    g_bus_unwatch_name(client->second);
    m_clients.erase(client);
    if (m_clients.empty() && onLastClientGone)
        onLastClientGone();
}

void BusService::emitManagerSignal(const char *name, const std::string &path)
{
    g_dbus_connection_emit_signal(m_connection.get(), nullptr, std::string(managerPath).c_str(),
        interfaces::manager, name, g_variant_new("(o)", path.c_str()), nullptr);
}

void BusService::cancelCalls(const std::string &path, const std::string &sender)
{
    const auto calls = m_calls;
    for (const auto &known : calls) {
        const BusCallPtr call = known.lock();
        if (call && isWithin(call->path(), path) && (sender.empty() || call->sender() == sender))
            call->cancel();
    }
}

} // namespace bridge
