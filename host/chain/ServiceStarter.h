#pragma once

#include "Failure.h"
#include "GlobalOptions.h"
#include "MediaServiceNames.h"
#include "chain/NamedServers.h"
#include "chain/ServiceServers.h"
#include "chain/ServiceStart.h"

#include <QDBusServiceWatcher>
#include <QDateTime>
#include <QObject>

#include <memory>

/// The media service on the bus of `orkaDBusConnection()`, which was there or is started. A bridge
/// that is started stays for the next command (--linger), or ends with this.
class ServiceStarter : public QObject
{
    Q_OBJECT

public:
    /// Throws Failure (missing) with a sentence where there can't be one.
    explicit ServiceStarter(const GlobalOptions &options);
    ~ServiceStarter() override;

    static QString busName() { return QLatin1String(mediaService::busName); }

    /// "session bus", "the private bus …": for people.
    const QString &busDescription() const { return m_start->busDescription(); }
    /// "session", "system" or the bus's address.
    const QString &bus() const { return m_start->bus(); }
    /// Whether the service ends with this.
    bool isForThisRun() const { return m_start->bridge() && m_start->bridge()->isChild(); }
    bool isBridge() const { return m_isBridge; }
    /// Whether a bridge that stays for later commands is used, and since when it runs.
    bool isLasting() const;
    QDateTime startedAt() const;
    /// "orka-media-bridge (process 123)".
    QString program() const;
    /// The media servers that it lists.
    ServiceServers &servers() { return *m_servers; }
    const ServiceServers &servers() const { return *m_servers; }
    /// Those that are named by their address.
    const NamedServers &namedServers() const { return *m_namedServers; }
    /// Waits for its first answer, 5 s and --timeout at most, to any question or to that about
    /// `address`, if one is named. Returns whether it came.
    bool answers(const QString &address = QString());
    /// Throws Failure (no answer) where it doesn't.
    void requireAnswer(const QString &address = QString());
    /// The same where it doesn't answer a ping in a second: then it hangs, not a media server.
    void requireSignOfLife() const;
    /// False after gone().
    bool isThere() const { return m_there; }
    /// Throws Failure (service left) after gone(): what was answered since may be short of
    /// anything.
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
    Failure silence() const;
    void begin();
    void watch();
    void meet(const QString &owner);
    void leave();

    const GlobalOptions m_options;
    std::unique_ptr<ServiceStart> m_start;
    QDBusServiceWatcher m_watcher;
    /// The service's unique name on the bus.
    QString m_owner;
    std::unique_ptr<ServiceServers> m_servers;
    std::unique_ptr<NamedServers> m_namedServers;
    bool m_isBridge = false;
    bool m_there = true;
};
