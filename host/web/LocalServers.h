#pragma once

#include "web/LiveChain.h"
#include "web/Soup.h"

#include <QHash>

/// The media servers that were heard on this machine's loopback: nothing else there is fetched
/// from, whatever rows name.
class LocalServers : public QObject
{
public:
    explicit LocalServers(LiveChain &chain);

    /// Whether this may be connected to: it isn't loopback, or it is such a server's port.
    bool admits(GSocketAddress *address) const;

private:
    void read();
    void ask(const QString &object);

    LiveChain &m_chain;
    /// Their ports, by the media service's objects.
    QHash<QString, quint16> m_ports;
};
