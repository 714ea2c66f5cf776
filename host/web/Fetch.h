#pragma once

#include "web/LocalServers.h"

#include <QByteArray>
#include <QList>
#include <QPair>

#include <functional>

/// Gets what an http address of a media server gives, for somebody else: of http alone, following
/// five redirects at most, and those only to the same host and port; of this machine's loopback
/// only what a media server there gives, by the address that is connected to. Tells once; who drops
/// it hears nothing.
class Fetch
{
public:
    struct Answer
    {
        /// Empty where the head of an answer is there.
        QString problem;
        /// Of the host that was asked; 0 with a problem.
        int status = 0;
        SoupMessageHeaders *headers = nullptr;
        /// The body as it comes.
        GInputStream *body = nullptr;
    };
    using Told = std::function<void(const Answer &)>;

    /// `headers` are added to the request.
    Fetch(SoupSession *session, const QByteArray &url,
        const QList<QPair<QByteArray, QByteArray>> &headers, Told told);
    ~Fetch();
    Fetch(const Fetch &) = delete;
    Fetch &operator=(const Fetch &) = delete;

    /// Cancelled with this object.
    GCancellable *cancellable() const { return m_cancellable.get(); }

private:
    static void onSent(GObject *session, GAsyncResult *result, gpointer fetch);
    static void onEvent(
        SoupMessage *, GSocketClientEvent event, GIOStream *connection, gpointer fetch);
    void send(GUri *uri);
    void forgetMessage();
    bool follow();

    GRef<SoupSession> m_session;
    QList<QPair<QByteArray, QByteArray>> m_headers;
    Told m_told;
    GRef<GCancellable> m_cancellable;
    GRef<SoupMessage> m_message;
    GRef<GInputStream> m_body;
    int m_redirects = 0;
    bool m_isRefused = false;
};

/// A session for this: few connections to one host, no proxy, no cookies, nothing kept.
GRef<SoupSession> newFetchSession(const LocalServers &local);
