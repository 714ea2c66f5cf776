#pragma once

#include "web/Soup.h"

#include <QTimer>

#include <unordered_map>

/// The connections of a SoupServer, a bounded number of them. When one more comes, the one that has
/// been without a whole request for longest is closed; one that has none for half a minute is, too,
/// so that slow and idle clients take nobody's place.
class Connections
{
public:
    explicit Connections(SoupServer *server);
    ~Connections();

    /// Listens there as well, by TLS where the server has a certificate. An empty text, or why it
    /// can't.
    QString listen(const QString &address, quint16 port, bool &isTaken);

private:
    struct Connection
    {
        GRef<GSocket> socket;
        qint64 idleSince;
        bool isBusy;
    };

    static void onStarted(SoupServer *, SoupServerMessage *message, gpointer connections);
    static void onRead(SoupServer *, SoupServerMessage *message, gpointer connections);
    static void onDone(SoupServer *, SoupServerMessage *message, gpointer connections);
    static void onGone(gpointer connections, GObject *message);
    void makeRoom();
    void sweep();

    SoupServer *m_server;
    /// By the request that each is to carry, or carries; libsoup has one for an idle connection,
    /// too.
    std::unordered_map<GObject *, Connection> m_connections;
    QTimer m_sweep;
    QTimer m_spare;
};
