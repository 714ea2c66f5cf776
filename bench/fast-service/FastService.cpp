#include "FastService.h"

#include "MediaServiceNames.h"
#include "Rows.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <vector>

using bridge::Message;

namespace {

std::uint64_t monotonicNanoseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::uint64_t(now.tv_sec) * 1000000000 + std::uint64_t(now.tv_nsec);
}

Message wrongArguments(DBusMessage *call)
{
    return Message(dbus_message_new_error(
        call, DBUS_ERROR_INVALID_ARGS, "The arguments don't have the types of this method."));
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
    return member == "GetServers" ? answerServers() : Message();
}

Message FastService::answerList(DBusMessage *call)
{
    dbus_uint32_t offset = 0;
    dbus_uint32_t max = 0;
    if (!dbus_message_get_args(
            call, nullptr, DBUS_TYPE_UINT32, &offset, DBUS_TYPE_UINT32, &max, DBUS_TYPE_INVALID))
        return wrongArguments(call);
    const Target target(dbus_message_get_path(call));
    if (target.kind == Target::Deep)
        return m_replies.chainLink(target);
    if (target.kind == Target::Wide)
        return m_replies.containers(target);
    return m_replies.children(windowSize(target.number, offset, max));
}

Message FastService::answerSearch(DBusMessage *call)
{
    const char *query = nullptr;
    dbus_uint32_t offset = 0;
    dbus_uint32_t max = 0;
    if (!dbus_message_get_args(call, nullptr, DBUS_TYPE_STRING, &query, DBUS_TYPE_UINT32, &offset,
            DBUS_TYPE_UINT32, &max, DBUS_TYPE_INVALID))
        return wrongArguments(call);
    const Target target(dbus_message_get_path(call));
    if (target.kind != Target::Rows)
        return Message(dbus_message_new_error(
            call, mediaService::errors::operationFailed, "This is walked, not searched."));
    return m_replies.found(windowSize(target.number, offset, max));
}

Message FastService::answerGet(DBusMessage *call)
{
    const char *interface = nullptr;
    const char *property = nullptr;
    if (!dbus_message_get_args(call, nullptr, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING,
            &property, DBUS_TYPE_INVALID))
        return wrongArguments(call);
    const Target target(dbus_message_get_path(call));
    if (std::strcmp(property, "ChildCount") == 0)
        return Replies::variant(uint32_t(target.kind == Target::Deep ? 2 : target.number));
    m_lastProperty = monotonicNanoseconds();
    for (const auto &[name, value] : rows::server(serverNumber(target.server))) {
        if (name == property)
            return Replies::variant(value);
    }
    return Message();
}

Message FastService::answerGetAll(DBusMessage *call)
{
    const std::string path = dbus_message_get_path(call);
    const Target target(path);
    if (target.isServer)
        return Replies::value(rows::server(serverNumber(target.server)));
    const bool isTrack = target.number == 20;
    return Replies::value(isTrack ? rows::track(0) : rows::container(path));
}

Message FastService::answerServers()
{
    std::vector<bridge::ObjectPath> paths;
    for (unsigned i = 0; i < m_servers; ++i)
        paths.push_back({serverPath(i)});
    return Replies::value(paths);
}

Message FastService::answerCounters(DBusMessage *call)
{
    Message reply(dbus_message_new_method_return(call));
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
