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
    : m_udn(udn)
    , m_friendlyName(friendlyName)
{
}

ScriptedUpnpServer::~ScriptedUpnpServer()
{
    leave();
}

QString ScriptedUpnpServer::start()
{
    m_http = soup_server_new(nullptr, nullptr);
    const auto handler = +[](SoupServer *, SoupServerMessage *message, const char *path,
                              GHashTable *, gpointer server) {
        static_cast<ScriptedUpnpServer *>(server)->handle(message, path);
    };
    soup_server_add_handler(m_http, nullptr, handler, this, nullptr);
    GError *error = nullptr;
    if (!soup_server_listen_all(m_http, m_port, SoupServerListenOptions(0), &error)) {
        QString why = "Port %1: %2"_s.arg(m_port).arg(error->message);
        g_error_free(error);
        close();
        return why;
    }
    GSList *uris = soup_server_get_uris(m_http);
    m_port = quint16(g_uri_get_port(static_cast<GUri *>(uris->data)));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    m_announcer = std::make_unique<Announcer>(m_udn, m_port);
    return m_announcer->addressCount() ? QString() : "No address of this machine carries SSDP.";
}

void ScriptedUpnpServer::leave()
{
    m_announcer.reset();
    close();
}

void ScriptedUpnpServer::vanish()
{
    if (m_announcer)
        m_announcer->silence();
    leave();
}

int ScriptedUpnpServer::count(const QString &action) const
{
    return int(std::count_if(m_calls.begin(), m_calls.end(),
        [&action](const SoapCall &call) { return call.action == action; }));
}

void ScriptedUpnpServer::close()
{
    if (!m_http)
        return;
    for (const auto &request : m_held)
        closeConnection(request->message);
    while (!m_held.empty())
        release(m_held.back().get());
    soup_server_disconnect(m_http);
    g_clear_object(&m_http);
}

void ScriptedUpnpServer::handle(SoupServerMessage *message, const QString &path)
{
    if (path == "/control") {
        handleControl(message);
    } else if (path == "/description.xml") {
        QByteArray text = deviceDescription(m_udn, m_friendlyName);
        if (behaviour.bareAmpersands)
            text.replace("&amp;", "&");
        reply(message, "description", text, SOUP_STATUS_OK, behaviour.delay);
    } else {
        soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
    }
}

void ScriptedUpnpServer::handleControl(SoupServerMessage *message)
{
    const SoupMessageBody *body = soup_server_message_get_request_body(message);
    const SoapCall call = readSoapCall(QByteArray(body->data, int(body->length)));
    m_calls.append(call);
    const SoapAnswer answer = answerCall(call, tree, behaviour, hostOf(message));
    const int rows = call.arguments.value("RequestedCount").toInt();
    reply(message, call.action, answer.body,
        answer.fault ? SOUP_STATUS_INTERNAL_SERVER_ERROR : SOUP_STATUS_OK,
        behaviour.delay + rows * behaviour.delayPerRow);
}

/// Answers now, later, never or not at all, whichever the behaviour has for the action.
void ScriptedUpnpServer::reply(SoupServerMessage *message, const QString &action,
    const QByteArray &body, unsigned status, int delay)
{
    const bool isKept = isOnKeptConnection(message);
    if (behaviour.drop.contains(action) || (behaviour.dropKept && isKept))
        closeConnection(message);
    else if (behaviour.hang.contains(action))
        hold(message, {}, 0, 0);
    else if (delay > 0)
        hold(message, body, status, delay);
    else
        send(message, body, status);
}

/// A status of 0 is for good.
void ScriptedUpnpServer::hold(
    SoupServerMessage *message, const QByteArray &body, unsigned status, int delay)
{
    auto request = std::make_unique<HeldRequest>();
    request->server = this;
    request->message = SOUP_SERVER_MESSAGE(g_object_ref(message));
    request->body = body;
    request->status = status;
    const auto gone = +[](SoupServerMessage *, HeldRequest *lost) {
        lost->server->release(lost);
    };
    request->finished = g_signal_connect(message, "disconnected", G_CALLBACK(gone), request.get());
    const auto due = +[](gpointer data) -> gboolean {
        auto *late = static_cast<HeldRequest *>(data);
        late->timer = 0;
        send(late->message, late->body, late->status);
        soup_server_message_unpause(late->message);
        late->server->release(late);
        return G_SOURCE_REMOVE;
    };
    if (status)
        request->timer = g_timeout_add(guint(delay), due, request.get());
    soup_server_message_pause(message);
    m_held.push_back(std::move(request));
}

/// Lets go of a request; its connection is closed or its answer is under way.
void ScriptedUpnpServer::release(HeldRequest *request)
{
    const auto it = std::find_if(
        m_held.begin(), m_held.end(), [request](const auto &one) { return one.get() == request; });
    if (request->timer)
        g_source_remove(request->timer);
    g_signal_handler_disconnect(request->message, request->finished);
    g_object_unref(request->message);
    m_held.erase(it);
}
