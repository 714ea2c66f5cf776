#pragma once

#include <api/core/OrkaRoles.h>

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <chrono>
#include <functional>

class Session;

/// The media servers that the worker lists at its root, as they come and go, compared with those
/// that the media service lists: where the worker has missed one, it is made anew. All waits
/// together end when --wait has passed since this was made.
class ServerList : public QObject
{
    Q_OBJECT

public:
    using Servers = QVector<OrkaRoles>;

    explicit ServerList(Session &session);

    /// Read anew where they have changed.
    const Servers &servers();
    /// Whether servers() would read anew.
    bool isStale() const { return m_stale; }
    /// Waits until `enough` says so of the servers that are there, or all that are there are known,
    /// unless --wait was named. Returns whether it says so.
    bool waitFor(const std::function<bool(const Servers &)> &enough);
    /// Waits until the list has stood still for this long or, where the media service has had its
    /// time to find all servers, until they are in it.
    void standStill(std::chrono::milliseconds time);
    /// Waits until there are servers and all that are there are known. Where the media service
    /// can't be asked for its own, a second without a change stands for that. `seen` is told of
    /// those that are there meanwhile, whenever it may be others.
    void settle(const std::function<void(const Servers &)> &seen = {});
    /// Waits until the servers of all these paths are there; a path of the root itself waits like
    /// settle(). Returns whether they are.
    bool waitForServersOf(const QVector<CMPath> &paths);
    /// Makes the worker anew where it lacks a server of which the media service tells all that a
    /// worker asks. To be called again while isWhole() is false.
    void mend();
    /// False for a worker of another kind, whose root has rows and no server among them: what the
    /// media service lists is none of its affair.
    bool isOfServers();
    /// Whether every server that the media service lists has its row.
    bool isWhole() { return missing().isEmpty(); }
    /// Object paths of the servers that have none.
    QStringList missing();
    /// With another media service.
    void startAgain();

    /// "/uuid:4d69…" of a node path, "/" of the root.
    static QString serverBase(const CMPath &path);

signals:
    void changed();

private:
    void noteChange();
    bool isComplete();
    bool isAwaiting() const;
    bool mayBeEmpty() const;
    bool isReadable(const QString &server);
    std::chrono::milliseconds remaining() const;
    bool waitUntil(const std::function<bool()> &done, std::chrono::milliseconds limit) const;

    Session &m_session;
    QElapsedTimer m_clock;
    QElapsedTimer m_sinceChange;
    Servers m_servers;
    bool m_stale = true;
    int m_mended = 0;
    /// Of object paths that aren't made of it.
    QHash<QString, QString> m_udns;
    /// Servers of which the media service tells nothing.
    QSet<QString> m_unreadable;
};
