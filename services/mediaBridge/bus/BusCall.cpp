#include "bus/BusCall.h"

#include "Log.h"

namespace bridge {

BusCall::BusCall(GDBusConnection *connection, GDBusMessage *message)
    : m_connection(Ref<GDBusConnection>::share(connection))
    , m_message(Ref<GDBusMessage>::share(message))
    , m_path(textOrEmpty(g_dbus_message_get_path(message)))
    , m_interface(textOrEmpty(g_dbus_message_get_interface(message)))
    , m_member(textOrEmpty(g_dbus_message_get_member(message)))
    , m_sender(textOrEmpty(g_dbus_message_get_sender(message)))
{
    GVariant *body = g_dbus_message_get_body(message);
    m_arguments = body ? Variant(g_variant_ref(body)) : ownVariant(g_variant_new_tuple(nullptr, 0));
}

BusCall::~BusCall()
{
    if (!m_isAnswered)
        fail({errors::operationFailed, "The media bridge gave the call up."});
}

void BusCall::reply(GVariant *values)
{
    const Variant owned = values ? ownVariant(values) : nullptr;
    if (m_isAnswered)
        return;
    const Ref<GDBusMessage> answer(g_dbus_message_new_method_reply(m_message.get()));
    if (owned)
        g_dbus_message_set_body(answer.get(), owned.get());
    send(answer.get());
}

void BusCall::fail(const Failure &failure)
{
    if (m_isAnswered)
        return;
    logDebug(m_member + " " + m_path + ": " + failure.text);
    // The text may hold what a server said, which may be anything.
    const std::string text = takeString(g_utf8_make_valid(failure.text.c_str(), -1));
    const Ref<GDBusMessage> answer(g_dbus_message_new_method_error_literal(
        m_message.get(), failure.name.c_str(), text.c_str()));
    send(answer.get());
}

void BusCall::cancel()
{
    fail({errors::cancelled, "Operation cancelled."});
    g_cancellable_cancel(m_cancellable.get());
}

void BusCall::send(GDBusMessage *answer)
{
    m_isAnswered = true;
    if ((g_dbus_message_get_flags(m_message.get()) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) != 0)
        return;
    GError *error = nullptr;
    if (g_dbus_connection_send_message(
            m_connection.get(), answer, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, &error))
        return;
    logWarning(m_member + " could not be answered: " + takeMessage(error));
}

} // namespace bridge
