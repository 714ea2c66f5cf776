#include "bus/BusService.h"

#include "Log.h"
#include "bus/Introspection.h"
#include "core/Later.h"
#include "core/Limits.h"
#include "core/ObjectAddress.h"
#include "core/SpareMemory.h"

#include <algorithm>
#include <sys/socket.h>

namespace bridge {

namespace {

/// An error of libdbus's that cleans up after itself.
struct BusError : DBusError
{
    BusError() { dbus_error_init(this); }
    ~BusError() { dbus_error_free(this); }
    BusError(const BusError &) = delete;
    BusError &operator=(const BusError &) = delete;
};

DBusConnection *openConnection(const std::string &where, DBusError &error)
{
    if (where == "session" || where == "system")
        return dbus_bus_get_private(
            where == "session" ? DBUS_BUS_SESSION : DBUS_BUS_SYSTEM, &error);
    DBusConnection *connection = dbus_connection_open_private(where.c_str(), &error);
    if (!connection || dbus_bus_register(connection, &error))
        return connection;
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
    return nullptr;
}

/// What is in it comes before everything else that is sent.
void limitSendBuffer(DBusConnection *connection)
{
    int socket = -1;
    if (dbus_connection_get_socket(connection, &socket) != FALSE)
        setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &limits::sentBytes, sizeof limits::sentBytes);
}

/// The system bus takes smaller messages, also where it is named by its address.
bool isSystemBus(const std::string &where)
{
    constexpr const char *usual = "unix:path=/run/dbus/system_bus_socket";
    const char *own = g_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return where == "system" || where == (own ? own : usual)
        || where == "unix:path=/var/run/dbus/system_bus_socket";
}

/// At `parent` itself or below it.
bool isWithin(std::string_view path, std::string_view parent)
{
    return path.substr(0, parent.size()) == parent
        && (path.size() == parent.size() || path[parent.size()] == '/');
}

/// Objects on the way to the manager can be introspected too.
bool isOurPath(std::string_view path)
{
    return isWithin(path, managerPath)
        || (path.size() < managerPath.size() && (path == "/" || isWithin(managerPath, path)));
}

} // namespace

void BusService::ConnectionCloser::operator()(DBusConnection *connection) const
{
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}

BusService::~BusService()
{
    m_answers->onPushed = nullptr;
    m_loop.reset();
}

std::string BusService::connect(const std::string &where)
{
    BusError error;
    m_connection.reset(openConnection(where, error));
    if (!m_connection)
        return "Can't reach the D-Bus \"" + where + "\": " + error.message
            + ". Start a bus (dbus-run-session does) or name one with --bus.";
    dbus_connection_set_exit_on_disconnect(m_connection.get(), FALSE);
    m_isShared = isSystemBus(where);
    m_messageBytes = m_isShared ? limits::systemMessageBytes : limits::messageBytes;
    // Whoever has no room for one more descriptor loses the whole connection.
    dbus_connection_set_max_received_unix_fds(m_connection.get(), limits::descriptorsOnBus);
    dbus_connection_add_filter(
        m_connection.get(),
        [](DBusConnection *, DBusMessage *message, void *self) {
            return static_cast<BusService *>(self)->receive(message)
                ? DBUS_HANDLER_RESULT_HANDLED
                : DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
        },
        this, nullptr);
    // Whoever leaves the bus.
    dbus_bus_add_match(m_connection.get(),
        "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg2=''", nullptr);
    limitSendBuffer(m_connection.get());
    m_answers->onPushed = [this] {
        if (!m_nextTurn.isRunning())
            m_nextTurn.start(0, [this] { handleWaiting(); });
    };
    m_loop = std::make_unique<BusLoop>(m_connection.get());
    return {};
}

std::string BusService::ownName(bool replace)
{
    const unsigned flags = DBUS_NAME_FLAG_DO_NOT_QUEUE
        | (m_isShared ? 0 : DBUS_NAME_FLAG_ALLOW_REPLACEMENT)
        | (replace ? DBUS_NAME_FLAG_REPLACE_EXISTING : 0);
    BusError error;
    const int result =
        dbus_bus_request_name(m_connection.get(), mediaService::busName, flags, &error);
    if (dbus_error_is_set(&error))
        return std::string("The bus doesn't give the name ") + mediaService::busName + ": "
            + error.message;
    if (result == DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER
        || result == DBUS_REQUEST_NAME_REPLY_ALREADY_OWNER)
        return {};
    return std::string("Another media service is running: ") + mediaService::busName
        + " is taken on this bus. Use that one, or stop it first.";
}

/// Whether the message was for us.
bool BusService::receive(DBusMessage *message)
{
    if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
        // Ping and the machine id are answered by libdbus, and so is whoever calls nobody.
        const std::string_view path = dbus_message_get_path(message);
        if (path.size() > limits::pathBytes || !isOurPath(path)
            || dbus_message_has_interface(message, DBUS_INTERFACE_PEER))
            return false;
        receiveCall(message);
        return true;
    }
    // Anybody may send us a signal of this name; only the bus's own counts.
    const bool isFromBus = dbus_message_has_sender(message, DBUS_SERVICE_DBUS);
    if (dbus_message_is_signal(message, DBUS_INTERFACE_LOCAL, "Disconnected"))
        onEnd("The bus has gone away.");
    else if (isFromBus && dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameLost")
        && Arguments(message).text() == mediaService::busName)
        onEnd("Another media service has taken the name.");
    else if (isFromBus && dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged"))
        clientLeft(Arguments(message).text());
    return false;
}

void BusService::receiveCall(DBusMessage *message)
{
    const std::string sender = textOrEmpty(dbus_message_get_sender(message));
    const bool isFirst = m_clients.empty();
    if (!sender.empty() && m_clients.insert(sender).second && isFirst && onFirstClient)
        onFirstClient();
    giveBackSpareMemorySoon();
    Calls &calls = m_calls[sender];
    if (mayCall(calls)) {
        const auto call =
            std::make_shared<BusCall>(m_connection.get(), message, m_messageBytes, m_answers);
        keepCall(calls, call);
        m_waiting.push(sender, call);
    } else if (dbus_message_get_no_reply(message) == FALSE) {
        m_answers->errors.push(sender, {sender, dbus_message_get_serial(message), std::nullopt});
    }
    handleSoon();
}

void BusService::handleSoon()
{
    if (m_nextTurn.isRunning())
        return;
    // Others may have called, too, or the caller may have left.
    if (dbus_connection_get_dispatch_status(m_connection.get()) == DBUS_DISPATCH_DATA_REMAINS)
        m_nextTurn.start(0, [this] { handleWaiting(); });
    else
        handleWaiting();
}

/// What is short comes before what is long, of which one goes out at a time: everything else waits
/// behind it.
void BusService::handleWaiting()
{
    constexpr unsigned unsentPauseMs = 1;
    if (unsentBytes() <= limits::unsentBytes) {
        handleSome();
        sendLongAnswer();
    }
    if (!m_waiting.isEmpty() || !m_answers->isEmpty())
        m_nextTurn.start(
            unsentBytes() > limits::unsentBytes ? unsentPauseMs : 0, [this] { handleWaiting(); });
}

/// For a short time of a turn. Meanwhile the bus is read on: it says who has left, and whoever has
/// few calls may still be behind those who have many.
void BusService::handleSome()
{
    const int64_t end = g_get_monotonic_time() + limits::turnUs;
    const TurnQueue<AnswerQueue::LongAnswer> &longAnswers = m_answers->longAnswers;
    const bool areMany = longAnswers.size() > limits::longAnswers;
    const auto may = [&](const std::string &client) {
        return !areMany || !longAnswers.holdsFor(client);
    };
    for (bool isMore = true;
         isMore && unsentBytes() <= limits::unsentBytes && g_get_monotonic_time() <= end;) {
        const std::optional<BusCallPtr> call = m_waiting.popWhere(may);
        if (call)
            handle(*call);
        sendErrors();
        isMore = call || !m_answers->errors.isEmpty();
    }
}

void BusService::sendLongAnswer()
{
    if (!m_answers->longAnswers.isEmpty())
        dbus_connection_send(
            m_connection.get(), m_answers->longAnswers.pop().message.get(), nullptr);
}

/// A few, since answers are sent in the order they were written.
void BusService::sendErrors()
{
    constexpr int some = 8;
    static const Failure tooMany{errors::limitsExceeded,
        "Too many calls at once: wait for the answers of those that are under way."};
    for (int i = 0; i < some && !m_answers->errors.isEmpty(); ++i) {
        const AnswerQueue::Error error = m_answers->errors.pop();
        const Message message =
            newError(error.caller, error.serial, error.failure ? *error.failure : tooMany);
        dbus_connection_send(m_connection.get(), message.get(), nullptr);
    }
}

void BusService::handle(const BusCallPtr &call)
{
    if (!call->isAnswered())
        onCall(call);
    call->letArgumentsGo();
    const auto calls = m_calls.find(call->sender());
    if (!call->isAnswered() && calls != m_calls.end())
        calls->second.begun.push_back(call);
}

/// Whether the client may have one more call under way.
bool BusService::mayCall(const Calls &calls) const
{
    const bool areMany = *m_callCount >= limits::callsOfAll;
    return *calls.count < (areMany ? limits::callsPerClientInNeed : limits::callsPerClient);
}

void BusService::keepCall(Calls &calls, const BusCallPtr &call)
{
    if (calls.known.size() >= calls.purgeAt) {
        for (auto *all : {&calls.known, &calls.begun})
            all->erase(std::remove_if(all->begin(), all->end(),
                           [](const auto &known) { return known.expired(); }),
                all->end());
        calls.purgeAt = std::max<size_t>(64, 2 * calls.known.size());
    }
    calls.known.push_back(call);
    ++*calls.count;
    ++*m_callCount;
    call->keep(std::shared_ptr<void>(nullptr, [of = calls.count, all = m_callCount](void *) {
        --*of;
        --*all;
    }));
}

void BusService::clientLeft(const std::string &name)
{
    if (const auto calls = m_calls.find(name); calls != m_calls.end()) {
        const auto &known = calls->second.known;
        // Those that wait first: else each that ends would make way for one that ends, too.
        for (auto it = known.rbegin(); it != known.rend(); ++it) {
            later([weak = *it] {
                if (const BusCallPtr call = weak.lock())
                    call->drop();
            });
        }
        m_calls.erase(calls);
    }
    m_answers->drop(name);
    releaseClient(name);
    giveBackSpareMemorySoon();
}

void BusService::releaseClient(const std::string &sender)
{
    if (m_clients.erase(sender) != 0 && m_clients.empty() && onLastClientGone)
        onLastClientGone();
}

void BusService::emitManagerSignal(const char *name, const std::string &path)
{
    const Message signal(dbus_message_new_signal(managerPath.data(), interfaces::manager, name));
    MessageWriter(signal.get()).add(ObjectPath{path});
    dbus_connection_send(m_connection.get(), signal.get(), nullptr);
}

void BusService::cancelCalls(const std::string &path, const std::string &sender)
{
    for (auto &[client, calls] : m_calls) {
        if (!sender.empty() && client != sender)
            continue;
        // Each is looked at by one Cancel, or a flood of them would look at all others each time.
        std::vector<std::weak_ptr<BusCall>> meant;
        std::vector<std::weak_ptr<BusCall>> others;
        for (auto &known : calls.begun) {
            const BusCallPtr call = known.lock();
            if (call && !call->isAnswered())
                (isWithin(call->path(), path) ? meant : others).push_back(std::move(known));
        }
        calls.begun = std::move(others);
        // Those that wait first: else each that ends would make way for one that ends, too.
        for (auto it = meant.rbegin(); it != meant.rend(); ++it) {
            later([weak = std::move(*it)] {
                if (const BusCallPtr call = weak.lock())
                    call->cancel();
            });
        }
    }
}

size_t BusService::unsentBytes() const
{
    return static_cast<size_t>(dbus_connection_get_outgoing_size(m_connection.get()));
}

void BusService::finishSending(unsigned ms)
{
    Timer enough;
    enough.start(ms, [] {});
    const auto areAllSent = [this] {
        return m_answers->isEmpty()
            && dbus_connection_has_messages_to_send(m_connection.get()) == FALSE;
    };
    while (!areAllSent() && enough.isRunning())
        g_main_context_iteration(nullptr, TRUE);
}

} // namespace bridge
