#include "Replies.h"

#include "Rows.h"

namespace {

Message emptyReply()
{
    return Message(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
}

template<typename AppendMaps>
Message listReply(AppendMaps appendMaps)
{
    Message reply = emptyReply();
    DBusMessageIter body;
    DBusMessageIter list;
    dbus_message_iter_init_append(reply.get(), &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_ARRAY, "a{sv}", &list);
    appendMaps(&list);
    dbus_message_iter_close_container(&body, &list);
    return reply;
}

template<typename AppendMap>
Message mapReply(AppendMap appendMap)
{
    Message reply = emptyReply();
    DBusMessageIter body;
    dbus_message_iter_init_append(reply.get(), &body);
    appendMap(&body);
    return reply;
}

Message tracks(unsigned count)
{
    return listReply([count](DBusMessageIter *list) {
        for (unsigned i = 0; i < count; ++i)
            rows::appendTrack(list, i);
    });
}

} // namespace

Message Replies::children(unsigned count)
{
    Message &kept = m_children[count];
    if (!kept)
        kept = tracks(count);
    return Message(dbus_message_copy(kept.get()));
}

Message Replies::chainLink(const ObjectPath &path)
{
    return listReply([&path](DBusMessageIter *list) {
        rows::appendTrack(list, path.number);
        if (path.number > 1) {
            const std::string next = path.sibling("deep" + std::to_string(path.number - 1));
            rows::appendContainer(list, next.c_str());
        }
    });
}

Message Replies::containers(const ObjectPath &path)
{
    return listReply([&path](DBusMessageIter *list) {
        for (unsigned i = 0; i < path.number; ++i)
            rows::appendContainer(list, path.sibling("deep1 " + std::to_string(i)).c_str());
    });
}

Message Replies::found(unsigned count)
{
    Message reply = children(count);
    DBusMessageIter body;
    const dbus_uint32_t total = count;
    dbus_message_iter_init_append(reply.get(), &body);
    dbus_message_iter_append_basic(&body, DBUS_TYPE_UINT32, &total);
    return reply;
}

Message Replies::track()
{
    return mapReply([](DBusMessageIter *body) { rows::appendTrack(body, 0); });
}

Message Replies::server(const std::string &path)
{
    return mapReply([&path](DBusMessageIter *body) {
        rows::appendServer(body, path.c_str(), serverNumber(path));
    });
}

Message Replies::container(const std::string &path)
{
    return mapReply([&path](DBusMessageIter *body) { rows::appendContainer(body, path.c_str()); });
}
