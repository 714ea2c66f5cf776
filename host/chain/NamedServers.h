#pragma once

#include "Failure.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <chrono>

/// The media servers that are named by their address: gives the addresses to the media service,
/// which looks there at once, and tells what became of it.
class NamedServers : public QObject
{
    Q_OBJECT

public:
    /// So many addresses are looked at.
    static constexpr int most = 64;

    /// Sends the calls. `limit` is how long an answer may take.
    NamedServers(const QStringList &addresses, std::chrono::milliseconds limit);

    /// Whether the media service still looks at one of them.
    bool isPending() const { return !m_pending.isEmpty(); }
    bool isPending(const QString &address) const { return m_pending.contains(address); }
    /// Whether it has said what is there, be it nothing.
    bool hasAnswered(const QString &address) const;
    /// A sentence for each address where none was found, so far, and one for those left out.
    QStringList problems() const;
    /// That the media server at the address was found. Throws Failure where it wasn't, or where the
    /// media service hasn't said so far.
    void requireFound(const QString &address) const;

signals:
    void changed();

private:
    void send(const QString &address, std::chrono::milliseconds limit);

    QSet<QString> m_pending;
    const QStringList m_addresses;
    const QStringList m_others;
    QHash<QString, Failure> m_problems;
};
