#pragma once

#include "bus/Message.h"
#include "core/Caller.h"
#include "core/Failure.h"
#include "core/Glib.h"
#include "core/TurnQueue.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace bridge {

/// Answers that wait to be sent, those of each caller in turn: they go out in the order they are
/// handed to libdbus, and a thousand calls that end at once are not to come before others'.
struct AnswerQueue
{
    struct Error
    {
        std::string caller;
        dbus_uint32_t serial = 0;
        /// Nothing for one call too many, of which there may be very many.
        std::optional<Failure> failure;
    };
    struct LongAnswer
    {
        Message message;
        /// Goes once libdbus has the message.
        std::shared_ptr<void> with;
    };
    void push(Error error);
    void push(const std::string &caller, LongAnswer answer);
    bool isEmpty() const { return errors.isEmpty() && longAnswers.isEmpty(); }
    void drop(const std::string &caller);

    TurnQueue<Error> errors;
    TurnQueue<LongAnswer> longAnswers;
    /// One more waits. Called from inside whatever fails or answers.
    std::function<void()> onPushed;
};

/// One method call that waits for its answer. Exactly one answer goes out: a second is dropped, and
/// a call that is let go unanswered is answered with an error, so no caller ever waits for nothing.
class BusCall
{
public:
    /// `maxBytes` is what one message on this bus may hold.
    BusCall(DBusConnection *connection, DBusMessage *message, size_t maxBytes,
        std::shared_ptr<AnswerQueue> answers);
    ~BusCall();
    BusCall(const BusCall &) = delete;
    BusCall &operator=(const BusCall &) = delete;

    const std::string &path() const { return m_path; }
    const std::string &interface() const { return m_interface; }
    const std::string &member() const { return m_member; }
    const std::string &sender() const { return m_sender; }
    /// Or its caller has left.
    bool isAnswered() const { return m_isAnswered; }
    /// These two only until the arguments are let go.
    std::string signature() const { return dbus_message_get_signature(m_message.get()); }
    Arguments arguments() const { return Arguments(m_message.get()); }
    /// Whether they were: it is being worked on.
    bool hasBegun() const { return !m_message; }
    /// They may hold megabytes and file descriptors, and the call may wait for long.
    void letArgumentsGo() { m_message.reset(); }
    /// Cancelled with the call; for the work that is done for it.
    GCancellable *cancellable() const { return m_cancellable.get(); }
    Caller caller() const { return {m_sender, m_cancellable}; }

    /// Answers with nothing, one value, or one value as a variant.
    void reply() { send(newAnswer(), 0); }
    void reply(const Value &value);
    void replyVariant(const Value &value);
    void fail(const Failure &failure);
    /// Ends the work behind the call and answers that it was cancelled.
    void cancel();
    /// Ends it without an answer: the caller is no longer there.
    void drop();

    /// For an answer that is written bit by bit: an empty one, and its sending. `bytes` is the size
    /// of its body; one that is too large for the bus becomes an error that says so.
    Message newAnswer() const;
    void send(Message answer, size_t bytes);
    /// The same for a list: a long one waits until shorter answers and other calls had their time.
    /// `with` goes once libdbus has it.
    void sendInTurn(Message answer, size_t bytes, std::shared_ptr<void> with);
    size_t maxBytes() const { return m_maxBytes; }
    /// Goes with it.
    void keep(std::shared_ptr<void> token) { m_token = std::move(token); }

private:
    DBusConnection *m_connection;
    Message m_message;
    std::string m_path;
    std::string m_interface;
    std::string m_member;
    std::string m_sender;
    dbus_uint32_t m_serial;
    bool m_wantsAnswer;
    size_t m_maxBytes;
    std::shared_ptr<AnswerQueue> m_answers;
    std::shared_ptr<void> m_token;
    Ref<GCancellable> m_cancellable{g_cancellable_new()};
    bool m_isAnswered = false;
};

using BusCallPtr = std::shared_ptr<BusCall>;

/// An answer without its kind: who gets it and to which of his calls.
Message newAnswer(int type, const std::string &caller, dbus_uint32_t serial);
/// The error that says this.
Message newError(const std::string &caller, dbus_uint32_t serial, const Failure &failure);

/// That a call would need, or was given, more than one D-Bus message holds.
Failure tooLargeForBus(size_t maxBytes);

} // namespace bridge
