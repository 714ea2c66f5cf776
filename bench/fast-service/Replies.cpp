#include "Replies.h"

#include "Rows.h"

using bridge::Message;
using bridge::MessageWriter;
using bridge::PropertyMap;

namespace {

Message emptyReply()
{
    return Message(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
}

} // namespace

Message Replies::value(const bridge::Value &value)
{
    Message reply = emptyReply();
    MessageWriter(reply.get()).add(value);
    return reply;
}

Message Replies::variant(const bridge::Value &value)
{
    Message reply = emptyReply();
    MessageWriter(reply.get()).addVariant(value);
    return reply;
}

Message Replies::children(unsigned count)
{
    Message &kept = m_children[count];
    if (!kept) {
        std::vector<PropertyMap> tracks;
        for (unsigned i = 0; i < count; ++i)
            tracks.push_back(rows::track(i));
        kept = value(tracks);
    }
    return Message(dbus_message_copy(kept.get()));
}

Message Replies::chainLink(const Target &target)
{
    std::vector<PropertyMap> link{rows::track(target.number)};
    if (target.number > 1)
        link.push_back(rows::container(target.sibling("deep" + std::to_string(target.number - 1))));
    return value(link);
}

Message Replies::containers(const Target &target)
{
    std::vector<PropertyMap> containers;
    for (unsigned i = 0; i < target.number; ++i)
        containers.push_back(rows::container(target.sibling("deep1 " + std::to_string(i))));
    return value(containers);
}

Message Replies::found(unsigned count)
{
    Message reply = children(count);
    MessageWriter(reply.get()).add(uint32_t(count));
    return reply;
}
