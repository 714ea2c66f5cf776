#include "ScriptedUpnpServer.h"

#include "Announcer.h"
#include "ContentDirectory.h"

#include <algorithm>
#include <libsoup/soup.h>
#include <vector>

/// A request whose answer waits, for a while or for good.
struct HeldRequest
{
    ScriptedUpnpServer *server = nullptr;
    SoupServerMessage *message = nullptr;
    QByteArray body;
    guint status = 0, timer = 0;
    gulong finished = 0;
};

struct ScriptedUpnpServer::Private
{
    QString udn, friendlyName;
    quint16 port = 0;
    SoupServer *http = nullptr;
    std::unique_ptr<Announcer> announcer;
    QVector<SoapCall> calls;
    std::vector<std::unique_ptr<HeldRequest>> held;

    QByteArray description(bool bareAmpersands) const
    {
        QByteArray text = deviceDescription(udn, friendlyName);
        return bareAmpersands ? text.replace("&amp;", "&") : text;
    }
    void close();
    void release(HeldRequest *request);
    void hold(ScriptedUpnpServer *server, SoupServerMessage *message, const QByteArray &body,
        guint status, int delay);
    void reply(ScriptedUpnpServer *server, SoupServerMessage *message, const QString &action,
        const QByteArray &body, guint status, int delay);
    static void handle(
        SoupServer *, SoupServerMessage *message, const char *path, GHashTable *, gpointer data);
    void handleControl(ScriptedUpnpServer *server, SoupServerMessage *message);
};

namespace {

void send(SoupServerMessage *message, const QByteArray &body, guint status)
{
    soup_server_message_set_status(message, status, nullptr);
    soup_server_message_set_response(message, "text/xml; charset=\"utf-8\"", SOUP_MEMORY_COPY,
        body.constData(), gsize(body.size()));
}

void closeConnection(SoupServerMessage *message)
{
    if (GSocket *socket = soup_server_message_get_socket(message))
        g_socket_shutdown(socket, TRUE, TRUE, nullptr);
}

/// Whether its connection has brought another request before.
bool isOnKeptConnection(SoupServerMessage *message)
{
    GObject *socket = G_OBJECT(soup_server_message_get_socket(message));
    const bool isKept = g_object_get_data(socket, "used") != nullptr;
    g_object_set_data(socket, "used", message);
    return isKept;
}

QString hostOf(SoupServerMessage *message)
{
    const char *host =
        soup_message_headers_get_one(soup_server_message_get_request_headers(message), "Host");
    return "http://" + QString::fromUtf8(host);
}

} // namespace

ScriptedUpnpServer::ScriptedUpnpServer(const QString &udn, const QString &friendlyName)
    : d(new Private)
{
    d->udn = udn;
    d->friendlyName = friendlyName;
}

ScriptedUpnpServer::~ScriptedUpnpServer()
{
    leave();
}

QString ScriptedUpnpServer::start()
{
    d->http = soup_server_new(nullptr, nullptr);
    soup_server_add_handler(d->http, nullptr, &Private::handle, this, nullptr);
    GError *error = nullptr;
    if (!soup_server_listen_all(d->http, d->port, SoupServerListenOptions(0), &error)) {
        const QString why = "Port %1: %2"_s.arg(d->port).arg(QString::fromUtf8(error->message));
        g_error_free(error);
        d->close();
        return why;
    }
    GSList *uris = soup_server_get_uris(d->http);
    d->port = quint16(g_uri_get_port(static_cast<GUri *>(uris->data)));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    d->announcer = std::make_unique<Announcer>(d->udn, d->port);
    return d->announcer->addressCount() ? QString() : "No address of this machine carries SSDP.";
}

void ScriptedUpnpServer::leave()
{
    d->announcer.reset();
    d->close();
}

void ScriptedUpnpServer::vanish()
{
    if (d->announcer)
        d->announcer->silence();
    leave();
}

QString ScriptedUpnpServer::udn() const
{
    return d->udn;
}
quint16 ScriptedUpnpServer::port() const
{
    return d->port;
}
const QVector<SoapCall> &ScriptedUpnpServer::calls() const
{
    return d->calls;
}
void ScriptedUpnpServer::forgetCalls()
{
    d->calls.clear();
}
int ScriptedUpnpServer::held() const
{
    return int(d->held.size());
}

int ScriptedUpnpServer::count(const QString &action) const
{
    return int(std::count_if(d->calls.begin(), d->calls.end(),
        [&action](const SoapCall &call) { return call.action == action; }));
}

void ScriptedUpnpServer::Private::close()
{
    if (!http)
        return;
    for (const auto &request : held)
        closeConnection(request->message);
    while (!held.empty())
        release(held.back().get());
    soup_server_disconnect(http);
    g_clear_object(&http);
}

/// Lets go of a request; its connection is closed or its answer is under way.
void ScriptedUpnpServer::Private::release(HeldRequest *request)
{
    const auto it = std::find_if(
        held.begin(), held.end(), [request](const auto &one) { return one.get() == request; });
    if (request->timer)
        g_source_remove(request->timer);
    g_signal_handler_disconnect(request->message, request->finished);
    g_object_unref(request->message);
    held.erase(it);
}

void ScriptedUpnpServer::Private::hold(ScriptedUpnpServer *server, SoupServerMessage *message,
    const QByteArray &body, guint status, int delay)
{
    auto request = std::make_unique<HeldRequest>();
    request->server = server;
    request->message = SOUP_SERVER_MESSAGE(g_object_ref(message));
    request->body = body;
    request->status = status;
    const auto gone = +[](SoupServerMessage *, gpointer data) {
        auto *lost = static_cast<HeldRequest *>(data);
        lost->server->d->release(lost);
    };
    request->finished = g_signal_connect(message, "disconnected", G_CALLBACK(gone), request.get());
    const auto due = +[](gpointer data) -> gboolean {
        auto *late = static_cast<HeldRequest *>(data);
        late->timer = 0;
        send(late->message, late->body, late->status);
        soup_server_message_unpause(late->message);
        late->server->d->release(late);
        return G_SOURCE_REMOVE;
    };
    if (status)
        request->timer = g_timeout_add(guint(delay), due, request.get());
    soup_server_message_pause(message);
    held.push_back(std::move(request));
}

/// Answers now, later, never or not at all, whichever the behaviour has for the action.
void ScriptedUpnpServer::Private::reply(ScriptedUpnpServer *server, SoupServerMessage *message,
    const QString &action, const QByteArray &body, guint status, int delay)
{
    const ServerBehaviour &behaviour = server->behaviour;
    const bool isKept = isOnKeptConnection(message);
    if (behaviour.drop.contains(action) || (behaviour.dropKept && isKept))
        closeConnection(message);
    else if (behaviour.hang.contains(action))
        hold(server, message, {}, 0, 0);
    else if (delay > 0)
        hold(server, message, body, status, delay);
    else
        send(message, body, status);
}

void ScriptedUpnpServer::Private::handle(
    SoupServer *, SoupServerMessage *message, const char *path, GHashTable *, gpointer data)
{
    auto *server = static_cast<ScriptedUpnpServer *>(data);
    const QString place(path);
    if (place == "/control")
        server->d->handleControl(server, message);
    else if (place == "/description.xml")
        server->d->reply(server, message, "description",
            server->d->description(server->behaviour.bareAmpersands), SOUP_STATUS_OK,
            server->behaviour.delay);
    else
        soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
}

void ScriptedUpnpServer::Private::handleControl(
    ScriptedUpnpServer *server, SoupServerMessage *message)
{
    const SoupMessageBody *body = soup_server_message_get_request_body(message);
    const SoapCall call = readSoapCall(QByteArray(body->data, int(body->length)));
    calls.append(call);
    const ServerBehaviour &behaviour = server->behaviour;
    const SoapAnswer answer = answerCall(call, server->tree, behaviour, hostOf(message));
    const int rows = call.arguments.value("RequestedCount").toInt();
    reply(server, message, call.action, answer.body,
        answer.fault ? SOUP_STATUS_INTERNAL_SERVER_ERROR : SOUP_STATUS_OK,
        behaviour.delay + rows * behaviour.delayPerRow);
}
