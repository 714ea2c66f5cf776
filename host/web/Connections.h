#pragma once

#include "web/Soup.h"

#include <QHash>
#include <QTimer>

#include <functional>

/// Accepts connections, a bounded number of them. When one more comes, the one that has been
/// without a whole request for longest is closed; one that has none for half a minute is, too, so
/// that slow and idle clients take nobody's place.
class Connections
{
public:
    using Accepted =
        std::function<void(GSocketConnection *, GSocketAddress *local, GSocketAddress *remote)>;

    explicit Connections(Accepted accepted);
    ~Connections();

    /// Listens there as well. An empty text, or why it can't.
    QString listen(const QString &address, quint16 port, bool &isTaken);

    /// The connection with this address on the other side has a request to be answered, or none.
    void setBusy(GSocketAddress *remote, bool isBusy);

private:
    struct Connection
    {
        GSocketConnection *stream;
        qint64 idleSince;
        bool isBusy;
    };

    static gboolean onIncoming(
        GSocketService *, GSocketConnection *stream, GObject *, gpointer connections);
    static void onGone(gpointer connections, GObject *stream);
    void accept(GSocketConnection *stream);
    void makeRoom();
    void sweep();

    Accepted m_accepted;
    GRef<GSocketService> m_service;
    QHash<GObject *, GSocketAddress *> m_addresses;
    QHash<GSocketAddress *, Connection> m_connections;
    QTimer m_sweep;
};
