#pragma once

#include <api/core/OrkaRoles.h>

#include <QElapsedTimer>
#include <QObject>
#include <QVector>

#include <chrono>
#include <functional>

class Session;

/// The media servers that the worker lists at its root, as they come and go. All its waits together
/// end when --wait has passed since it was made.
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
    /// Waits until `enough` says so of the servers that are there. Returns whether.
    bool waitFor(const std::function<bool(const Servers &)> &enough);
    /// Waits until the list has stood still for this long.
    void standStill(std::chrono::milliseconds time);
    /// Waits until the list is not empty and has stood still for a second.
    void settle();
    /// Waits until the servers of all these paths are there; a path of the root itself waits like
    /// settle(). Returns whether they are.
    bool waitForServersOf(const QVector<CMPath> &paths);

    /// "/uuid:4d69…" of a node path, "/" of the root.
    static QString serverBase(const CMPath &path);

signals:
    void changed();

private:
    std::chrono::milliseconds remaining() const;
    bool waitUntil(const std::function<bool()> &done, std::chrono::milliseconds limit) const;

    Session &m_session;
    QElapsedTimer m_clock;
    Servers m_servers;
    bool m_stale = true;
};
