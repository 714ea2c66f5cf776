#include "FloorClient.h"

#include "MediaServiceNames.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

namespace {

const char *const filter[] = {"Type", "TypeEx", "MIMEType", "DisplayName", "Artist", "Album",
    "AlbumArtURL", "URLs", "Creator", "Genre", "Path", "Date", "TrackNumber", "Duration", "Bitrate",
    "SampleRate", "BitsPerSample"};

DBusMessage *listChildren(const std::string &path, dbus_uint32_t offset, dbus_uint32_t max)
{
    DBusMessage *call = dbus_message_new_method_call(
        mediaService::busName, path.c_str(), mediaService::interfaces::container, "ListChildren");
    const char *const *names = filter;
    dbus_message_append_args(call, DBUS_TYPE_UINT32, &offset, DBUS_TYPE_UINT32, &max,
        DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &names, int(sizeof filter / sizeof *filter),
        DBUS_TYPE_INVALID);
    return call;
}

DBusMessage *getChildCount(const std::string &path)
{
    DBusMessage *call = dbus_message_new_method_call(
        mediaService::busName, path.c_str(), DBUS_INTERFACE_PROPERTIES, "Get");
    const char *interface = mediaService::interfaces::object;
    const char *property = "ChildCount";
    dbus_message_append_args(
        call, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property, DBUS_TYPE_INVALID);
    return call;
}

[[noreturn]] void fail(const char *what, const char *why)
{
    std::fprintf(stderr, "The floor can't be measured: %s (%s).\n", what, why);
    std::exit(3);
}

} // namespace

FloorClient::FloorClient(const std::string &address)
{
    DBusError error = DBUS_ERROR_INIT;
    m_connection = dbus_connection_open_private(address.c_str(), &error);
    if (!m_connection || !dbus_bus_register(m_connection, &error))
        fail("no connection to the bus", error.message);
    dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
}

FloorClient::~FloorClient()
{
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

void FloorClient::list(const std::string &path, unsigned offset, unsigned max)
{
    send(listChildren(path, offset, max));
    send(getChildCount(path));
    waitForAll();
}

void FloorClient::readProperties(const std::string &path, int count)
{
    for (int i = 0; i < count; ++i)
        send(getChildCount(path));
    waitForAll();
}

void FloorClient::send(DBusMessage *call)
{
    DBusPendingCall *pending = nullptr;
    if (!dbus_connection_send_with_reply(m_connection, call, &pending, INT_MAX) || !pending)
        fail("a call could not be sent", "the bus is gone");
    dbus_message_unref(call);
    m_pending.push_back(pending);
}

void FloorClient::waitForAll()
{
    for (DBusPendingCall *pending : m_pending) {
        dbus_pending_call_block(pending);
        DBusMessage *reply = dbus_pending_call_steal_reply(pending);
        if (dbus_message_get_type(reply) == DBUS_MESSAGE_TYPE_ERROR)
            fail("a call was refused", dbus_message_get_error_name(reply));
        dbus_message_unref(reply);
        dbus_pending_call_unref(pending);
    }
    m_pending.clear();
}
