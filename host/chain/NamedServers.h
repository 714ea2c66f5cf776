#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

#include <chrono>

/// The media servers that are named by their address: gives the addresses to the media service,
/// which looks there at once, and tells what became of it.
class NamedServers : public QObject
{
    Q_OBJECT

public:
    /// Sends the calls. `limit` is how long an answer may take.
    NamedServers(const QStringList &addresses, std::chrono::milliseconds limit);

    /// Whether the media service still looks at one of them.
    bool isPending() const { return m_pending > 0; }
    /// A sentence for each address where none was found, so far.
    QStringList problems() const;

signals:
    void changed();

private:
    void send(const QString &address, std::chrono::milliseconds limit);

    int m_pending = 0;
    const QStringList m_addresses;
    QHash<QString, QString> m_problems;
};
