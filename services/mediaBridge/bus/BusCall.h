#pragma once

#include "bus/Message.h"
#include "core/Failure.h"
#include "core/Glib.h"

#include <memory>
#include <string>

namespace bridge {

/// One method call that waits for its answer. Exactly one answer goes out: a second is dropped, and
/// a call that is let go unanswered is answered with an error, so no caller ever waits for nothing.
class BusCall
{
public:
    BusCall(DBusConnection *connection, DBusMessage *message);
    ~BusCall();
    BusCall(const BusCall &) = delete;
    BusCall &operator=(const BusCall &) = delete;

    const std::string &path() const { return m_path; }
    const std::string &interface() const { return m_interface; }
    const std::string &member() const { return m_member; }
    const std::string &sender() const { return m_sender; }
    std::string signature() const { return dbus_message_get_signature(m_message.get()); }
    Arguments arguments() const { return Arguments(m_message.get()); }
    /// Cancelled with the call; for the work that is done for it.
    GCancellable *cancellable() const { return m_cancellable.get(); }

    /// Answers with nothing, one value, or one value as a variant.
    void reply() { send(newAnswer()); }
    void reply(const Value &value);
    void replyVariant(const Value &value);
    void fail(const Failure &failure);
    /// Ends the work behind the call and answers that it was cancelled.
    void cancel();

    /// For an answer that is written bit by bit: an empty one, and its sending.
    Message newAnswer() const;
    void send(Message answer);

private:
    DBusConnection *m_connection;
    Message m_message;
    std::string m_path;
    std::string m_interface;
    std::string m_member;
    std::string m_sender;
    Ref<GCancellable> m_cancellable{g_cancellable_new()};
    bool m_isAnswered = false;
};

using BusCallPtr = std::shared_ptr<BusCall>;

} // namespace bridge
