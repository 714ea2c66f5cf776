#pragma once

#include "Failure.h"
#include "GlobalOptions.h"
#include "chain/BusDaemon.h"
#include "chain/ServiceServers.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

/// Makes sure that a media service is on the bus of `orkaDBusConnection()`, which it opens: the one
/// that the bus has or can activate, or our bridge, on a private bus of ours where there is no
/// session bus. What it started ends with it.
class ServiceOnBus : public QObject
{
    Q_OBJECT

public:
    /// Throws Failure (missing) with a sentence where there can't be one.
    explicit ServiceOnBus(const GlobalOptions &options);
    ~ServiceOnBus() override;

    static QString busName() { return QStringLiteral("com.intel.dleyna-server"); }

    /// "session bus", "the private bus …": for people.
    const QString &busDescription() const { return m_busDescription; }
    /// "session", "system" or the bus's address.
    QString bus() const { return m_busDaemon ? m_busDaemon->address() : m_options.bus; }
    bool startedBridge() const { return bool(m_bridge); }
    /// "orka-media-bridge (process 123)".
    QString program() const;
    /// The media servers that it lists.
    ServiceServers &servers() { return *m_servers; }
    /// Waits for its first answer, 5 s and --timeout at most. Returns whether one came.
    bool answers();
    /// Throws Failure (no answer) where it doesn't.
    void requireAnswer();
    /// False after gone().
    bool isThere() const { return m_there; }
    /// Throws Failure (missing) after gone(): what was answered since may be short of anything.
    void requireThere() const;
    /// The same, after asking the bus: the news may come behind an answer that it makes worthless.
    void requireSameOwner();
    /// After gone(): whether a service is there again; starts one where that can be done.
    bool returns();

signals:
    /// The service has left the bus.
    void gone();
    /// Another one has its name now.
    void back();

private:
    void openBus();
    void openPrivateBus();
    bool useServiceOnBus();
    void startBridge();
    void takenName();
    QStringList bridgeArguments() const;
    void waitForBridge();
    Failure bridgeFailed(const QString &why);
    std::chrono::milliseconds remaining() const;
    void watch();
    void meet(const QString &owner);
    void leave();

    const GlobalOptions m_options;
    QElapsedTimer m_clock;
    QString m_busDescription;
    std::unique_ptr<BusDaemon> m_busDaemon;
    std::unique_ptr<ChildProcess> m_bridge;
    QDBusServiceWatcher m_watcher;
    /// The service's unique name on the bus.
    QString m_owner;
    std::unique_ptr<ServiceServers> m_servers;
    bool m_there = true;
};
