#include "FastService.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

std::uint64_t monotonicNanoseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::uint64_t(now.tv_sec) * 1000000000 + std::uint64_t(now.tv_nsec);
}

Message replyTo(DBusMessage *call)
{
    return Message(dbus_message_new_method_return(call));
}

template<typename AppendValue>
Message variantReply(DBusMessage *call, const char *signature, AppendValue appendValue)
{
    Message reply = replyTo(call);
    DBusMessageIter body;
    DBusMessageIter variant;
    dbus_message_iter_init_append(reply.get(), &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_VARIANT, signature, &variant);
    appendValue(&variant);
    dbus_message_iter_close_container(&body, &variant);
    return reply;
}

Message textProperty(DBusMessage *call, const std::string &value)
{
    const char *plain = value.c_str();
    return variantReply(call, "s", [&plain](DBusMessageIter *variant) {
        dbus_message_iter_append_basic(variant, DBUS_TYPE_STRING, &plain);
    });
}

Message numberProperty(DBusMessage *call, dbus_uint32_t value)
{
    return variantReply(call, "u", [&value](DBusMessageIter *variant) {
        dbus_message_iter_append_basic(variant, DBUS_TYPE_UINT32, &value);
    });
}

Message searchCapsProperty(DBusMessage *call)
{
    return variantReply(call, "as", [](DBusMessageIter *variant) {
        DBusMessageIter list;
        dbus_message_iter_open_container(variant, DBUS_TYPE_ARRAY, "s", &list);
        for (const char *name : {"DisplayName", "Artist", "Album", "Type", "Genre"})
            dbus_message_iter_append_basic(&list, DBUS_TYPE_STRING, &name);
        dbus_message_iter_close_container(variant, &list);
    });
}

Message wrongArguments(DBusMessage *call)
{
    return Message(dbus_message_new_error(
        call, DBUS_ERROR_INVALID_ARGS, "The arguments don't have the types of this method."));
}

std::string numbered(const char *text, unsigned number)
{
    return text + std::to_string(number);
}

/// How many of `all` children a window holds; 0 asks for all.
unsigned windowSize(unsigned all, unsigned offset, unsigned max)
{
    const unsigned left = offset < all ? all - offset : 0;
    return max == 0 ? left : std::min(left, max);
}

} // namespace

FastService::FastService(DBusConnection *connection, unsigned servers)
    : m_connection(connection)
    , m_servers(servers)
{
}

void FastService::run()
{
    while (dbus_connection_read_write(m_connection, -1)) {
        while (const Message call{dbus_connection_pop_message(m_connection)}) {
            if (dbus_message_get_type(call.get()) == DBUS_MESSAGE_TYPE_METHOD_CALL)
                handle(call.get());
        }
    }
}

void FastService::handle(DBusMessage *call)
{
    Message reply = answer(call);
    if (!reply)
        reply.reset(dbus_message_new_error(
            call, DBUS_ERROR_UNKNOWN_METHOD, "The fast service knows no such method."));
    send(call, std::move(reply));
}

Message FastService::answer(DBusMessage *call)
{
    const std::string member = dbus_message_get_member(call);
    if (member == "Counters")
        return answerCounters(call);
    ++m_calls;
    if (member == "ListChildren" || member == "ListChildrenEx")
        return answerList(call);
    if (member == "SearchObjectsEx")
        return answerSearch(call);
    if (member == "Get")
        return answerGet(call);
    if (member == "GetAll")
        return answerGetAll(call);
    return member == "GetServers" ? answerServers(call) : Message();
}

Message FastService::answerList(DBusMessage *call)
{
    dbus_uint32_t offset = 0;
    dbus_uint32_t max = 0;
    if (!dbus_message_get_args(
            call, nullptr, DBUS_TYPE_UINT32, &offset, DBUS_TYPE_UINT32, &max, DBUS_TYPE_INVALID))
        return wrongArguments(call);
    const ObjectPath path(dbus_message_get_path(call));
    if (path.kind == ObjectPath::Deep)
        return m_replies.chainLink(path);
    if (path.kind == ObjectPath::Wide)
        return m_replies.containers(path);
    return m_replies.children(windowSize(path.number, offset, max));
}

Message FastService::answerSearch(DBusMessage *call)
{
    const char *query = nullptr;
    dbus_uint32_t offset = 0;
    dbus_uint32_t max = 0;
    if (!dbus_message_get_args(call, nullptr, DBUS_TYPE_STRING, &query, DBUS_TYPE_UINT32, &offset,
            DBUS_TYPE_UINT32, &max, DBUS_TYPE_INVALID))
        return wrongArguments(call);
    const ObjectPath path(dbus_message_get_path(call));
    if (path.kind != ObjectPath::Rows)
        return Message(dbus_message_new_error(
            call, "com.intel.dleyna.OperationFailed", "This is walked, not searched."));
    return m_replies.found(windowSize(path.number, offset, max));
}

Message FastService::answerGet(DBusMessage *call)
{
    const char *interface = nullptr;
    const char *property = nullptr;
    if (!dbus_message_get_args(call, nullptr, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING,
            &property, DBUS_TYPE_INVALID))
        return wrongArguments(call);
    const ObjectPath path(dbus_message_get_path(call));
    const unsigned server = serverNumber(path.server);
    if (std::strcmp(property, "ChildCount") == 0)
        return numberProperty(call, path.kind == ObjectPath::Deep ? 2 : path.number);
    m_lastProperty = monotonicNanoseconds();
    if (std::strcmp(property, "SearchCaps") == 0)
        return searchCapsProperty(call);
    const bool isUdn = std::strcmp(property, "UDN") == 0;
    return textProperty(call, numbered(isUdn ? "uuid:fast-" : "Fast media server ", server));
}

Message FastService::answerGetAll(DBusMessage *call)
{
    const std::string path = dbus_message_get_path(call);
    const ObjectPath parsed(path);
    if (parsed.isServer)
        return m_replies.server(path);
    const bool isTrack = parsed.number == 20;
    return isTrack ? m_replies.track() : m_replies.container(path);
}

Message FastService::answerServers(DBusMessage *call)
{
    Message reply = replyTo(call);
    DBusMessageIter body;
    DBusMessageIter list;
    dbus_message_iter_init_append(reply.get(), &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_ARRAY, "o", &list);
    for (unsigned i = 0; i < m_servers; ++i) {
        const std::string path = serverPath(i);
        const char *plain = path.c_str();
        dbus_message_iter_append_basic(&list, DBUS_TYPE_OBJECT_PATH, &plain);
    }
    dbus_message_iter_close_container(&body, &list);
    return reply;
}

Message FastService::answerCounters(DBusMessage *call)
{
    Message reply = replyTo(call);
    dbus_message_append_args(reply.get(), DBUS_TYPE_UINT32, &m_calls, DBUS_TYPE_UINT64,
        &m_lastProperty, DBUS_TYPE_INVALID);
    m_calls = 0;
    return reply;
}

void FastService::send(DBusMessage *call, Message reply)
{
    dbus_message_set_reply_serial(reply.get(), dbus_message_get_serial(call));
    dbus_message_set_destination(reply.get(), dbus_message_get_sender(call));
    dbus_message_set_no_reply(reply.get(), TRUE);
    dbus_connection_send(m_connection, reply.get(), nullptr);
}
