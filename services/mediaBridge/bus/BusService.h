#pragma once

#include "bus/BusCall.h"
#include "bus/BusLoop.h"
#include "core/TurnQueue.h"

#include <functional>
#include <map>
#include <set>
#include <vector>

namespace bridge {

/// The service's place on the bus: its name, the calls that come in, and who makes them.
class BusService
{
public:
    BusService() = default;
    ~BusService();
    BusService(const BusService &) = delete;
    BusService &operator=(const BusService &) = delete;

    /// `where` is "session", "system" or a D-Bus address. Gives a sentence on failure, else
    /// nothing.
    std::string connect(const std::string &where);
    /// Whether programs of other users are on the bus.
    bool isShared() const { return m_isShared; }
    /// Takes the name, from a running service only with `replace`. Failure as above. Calls are
    /// answered from then on. Another may replace it in turn, but not on a shared bus.
    std::string ownName(bool replace);
    /// Bytes of answers that the bus hasn't taken yet.
    size_t unsentBytes() const;
    /// Waits for the bus to take the last answers, for so long at most; the main loop runs on.
    void finishSending(unsigned ms);

    /// Every call to a path of the service, on the main thread; where many wait, clients take
    /// turns.
    std::function<void(const BusCallPtr &)> onCall;
    /// The last client left or released the service.
    std::function<void()> onLastClientGone;
    /// A client came where there was none.
    std::function<void()> onFirstClient;
    /// The bus is gone, or another service took the name: a sentence says which.
    std::function<void(const std::string &)> onEnd;

    void emitManagerSignal(const char *name, const std::string &path);
    /// Cancels what `sender` asked of objects at or below `path`; of everybody if it is empty.
    void cancelCalls(const std::string &path, const std::string &sender);
    /// Stops counting this client, as if it had left.
    void releaseClient(const std::string &sender);

private:
    struct ConnectionCloser
    {
        void operator()(DBusConnection *connection) const;
    };

    /// Calls of one client.
    struct Calls
    {
        /// How many are unanswered.
        std::shared_ptr<size_t> count = std::make_shared<size_t>(0);
        /// These, and some that have ended since.
        std::vector<std::weak_ptr<BusCall>> known;
        /// How many there may be before those are taken out.
        size_t purgeAt = 64;
        /// Those of them that were handled and have no answer yet, nor were cancelled; some may
        /// have ended since.
        std::vector<std::weak_ptr<BusCall>> begun;
    };
    bool receive(DBusMessage *message);
    void receiveCall(DBusMessage *message);
    bool mayCall(const Calls &calls) const;
    void keepCall(Calls &calls, const BusCallPtr &call);
    void handleSoon();
    void handle(const BusCallPtr &call);
    void sendErrors();
    void sendLongAnswer();
    void clientLeft(const std::string &name);
    void handleWaiting();
    void handleSome();

    std::unique_ptr<DBusConnection, ConnectionCloser> m_connection;
    std::unique_ptr<BusLoop> m_loop;
    bool m_isShared = false;
    size_t m_messageBytes = 0;
    /// Unique names of those who have made a call and didn't release the service since.
    std::set<std::string> m_clients;
    /// By the caller's unique name.
    std::map<std::string, Calls> m_calls;
    std::shared_ptr<size_t> m_callCount = std::make_shared<size_t>(0);
    /// Calls that were not looked at yet, by the caller's unique name.
    TurnQueue<BusCallPtr> m_waiting;
    /// As many of a client as the bus lets wait for an answer. The calls have it, too.
    std::shared_ptr<AnswerQueue> m_answers = std::make_shared<AnswerQueue>();
    Timer m_nextTurn;
};

} // namespace bridge
