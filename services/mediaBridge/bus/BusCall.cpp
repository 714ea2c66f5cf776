#include "bus/BusCall.h"

#include "Log.h"

namespace bridge {

BusCall::BusCall(DBusConnection *connection, DBusMessage *message)
    : m_connection(dbus_connection_ref(connection))
    , m_message(dbus_message_ref(message))
    , m_path(textOrEmpty(dbus_message_get_path(message)))
    , m_interface(textOrEmpty(dbus_message_get_interface(message)))
    , m_member(textOrEmpty(dbus_message_get_member(message)))
    , m_sender(textOrEmpty(dbus_message_get_sender(message)))
{
}

BusCall::~BusCall()
{
    if (!m_isAnswered)
        fail({errors::operationFailed, "The media bridge gave the call up."});
    dbus_connection_unref(m_connection);
}

void BusCall::reply(const Value &value)
{
    Message answer = newAnswer();
    MessageWriter(answer.get()).add(value);
    send(std::move(answer));
}

void BusCall::replyVariant(const Value &value)
{
    Message answer = newAnswer();
    MessageWriter(answer.get()).addVariant(value);
    send(std::move(answer));
}

void BusCall::fail(const Failure &failure)
{
    if (m_isAnswered)
        return;
    logDebug(m_member + " " + m_path + ": " + failure.text);
    // The text may hold what a server said, which may be anything.
    const std::string text = takeString(g_utf8_make_valid(failure.text.c_str(), -1));
    send(Message(dbus_message_new_error(m_message.get(), failure.name.c_str(), text.c_str())));
}

void BusCall::cancel()
{
    fail({errors::cancelled, "Operation cancelled."});
    g_cancellable_cancel(m_cancellable.get());
}

Message BusCall::newAnswer() const
{
    return Message(dbus_message_new_method_return(m_message.get()));
}

void BusCall::send(Message answer)
{
    if (!std::exchange(m_isAnswered, true) && !dbus_message_get_no_reply(m_message.get()))
        dbus_connection_send(m_connection, answer.get(), nullptr);
}

} // namespace bridge
