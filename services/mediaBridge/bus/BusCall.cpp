#include "bus/BusCall.h"

#include "Log.h"
#include "core/Backlog.h"
#include "core/Limits.h"
#include "core/Text.h"

namespace bridge {

void AnswerQueue::push(Error error)
{
    const std::string caller = error.caller;
    errors.push(caller, std::move(error));
    if (onPushed)
        onPushed();
}

void AnswerQueue::push(const std::string &caller, LongAnswer answer)
{
    longAnswers.push(caller, std::move(answer));
    if (onPushed)
        onPushed();
}

void AnswerQueue::drop(const std::string &caller)
{
    errors.drop(caller);
    longAnswers.drop(caller);
}

BusCall::BusCall(DBusConnection *connection, DBusMessage *message, size_t maxBytes,
    std::shared_ptr<AnswerQueue> answers)
    : m_connection(dbus_connection_ref(connection))
    , m_message(dbus_message_ref(message))
    , m_path(textOrEmpty(dbus_message_get_path(message)))
    , m_interface(textOrEmpty(dbus_message_get_interface(message)))
    , m_member(textOrEmpty(dbus_message_get_member(message)))
    , m_sender(textOrEmpty(dbus_message_get_sender(message)))
    , m_serial(dbus_message_get_serial(message))
    , m_wantsAnswer(dbus_message_get_no_reply(message) == FALSE)
    , m_maxBytes(maxBytes)
    , m_answers(std::move(answers))
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
    MessageWriter body(answer.get());
    body.add(value);
    send(std::move(answer), body.bytes());
}

void BusCall::replyVariant(const Value &value)
{
    Message answer = newAnswer();
    MessageWriter body(answer.get());
    body.addVariant(value);
    send(std::move(answer), body.bytes());
}

void BusCall::fail(const Failure &failure)
{
    if (std::exchange(m_isAnswered, true))
        return;
    const Failure bounded{failure.name, shortened(failure.text, limits::errorTextBytes)};
    logDebug(m_member + " " + m_path + ": " + bounded.text);
    if (m_wantsAnswer)
        m_answers->push({m_sender, m_serial, bounded});
}

void BusCall::cancel()
{
    fail({errors::cancelled, "Operation cancelled."});
    g_cancellable_cancel(m_cancellable.get());
}

void BusCall::drop()
{
    m_isAnswered = true;
    g_cancellable_cancel(m_cancellable.get());
}

Message BusCall::newAnswer() const
{
    return bridge::newAnswer(DBUS_MESSAGE_TYPE_METHOD_RETURN, m_sender, m_serial);
}

void BusCall::send(Message answer, size_t bytes)
{
    if (bytes > m_maxBytes)
        fail(tooLargeForBus(m_maxBytes));
    else if (!std::exchange(m_isAnswered, true) && m_wantsAnswer)
        dbus_connection_send(m_connection, answer.get(), nullptr);
}

void BusCall::sendInTurn(Message answer, size_t bytes, std::shared_ptr<void> with)
{
    if (bytes <= limits::answerAtOnce || bytes > m_maxBytes)
        send(std::move(answer), bytes);
    else if (!std::exchange(m_isAnswered, true) && m_wantsAnswer)
        m_answers->push(
            m_sender, {std::move(answer), Backlog::instance().hold(bytes, std::move(with))});
}

Message newAnswer(int type, const std::string &caller, dbus_uint32_t serial)
{
    Message answer(dbus_message_new(type));
    dbus_message_set_no_reply(answer.get(), TRUE);
    dbus_message_set_reply_serial(answer.get(), serial);
    if (!caller.empty())
        dbus_message_set_destination(answer.get(), caller.c_str());
    return answer;
}

Message newError(const std::string &caller, dbus_uint32_t serial, const Failure &failure)
{
    Message error = newAnswer(DBUS_MESSAGE_TYPE_ERROR, caller, serial);
    dbus_message_set_error_name(error.get(), failure.name.c_str());
    // The text may hold what a server or a client said, which may be anything and of any length.
    MessageWriter(error.get()).add(shortened(failure.text, limits::errorTextBytes));
    return error;
}

Failure tooLargeForBus(size_t maxBytes)
{
    return {errors::operationFailed,
        "The answer is too long for one D-Bus message (" + std::to_string(maxBytes >> 20)
            + " MiB). Ask for fewer objects at a time, or for fewer properties."};
}

} // namespace bridge
