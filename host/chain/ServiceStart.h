#pragma once

#include "GlobalOptions.h"
#include "chain/BridgeProcess.h"
#include "chain/BusDaemon.h"

#include <QElapsedTimer>
#include <QString>

#include <memory>

class Bus;
class UsersBus;

/// The ways to a media service, which are tried one after another: the one that the named bus has
/// or can activate, our bridge there, our bridge on the private bus of this user, and on one of
/// this run's own. Afterwards a service is on the bus of `orkaDBusConnection()`, which this opens.
class ServiceStart
{
public:
    /// Throws Failure (missing) with a sentence where there can't be one.
    explicit ServiceStart(const GlobalOptions &options);
    ~ServiceStart();

    /// "session", "system" or the bus's address; for people "session bus", "the private bus …".
    const QString &bus() const { return m_bus; }
    const QString &busDescription() const { return m_busDescription; }
    /// Null where the bus has or activates a service of its own.
    const BridgeProcess *bridge() const { return m_bridge.get(); }

private:
    bool opensNamedBus();
    bool usesServiceThere();
    bool activates(const Bus &bus);
    bool startsBridgeThere();
    bool usesUsersBus();
    void startOnOwnBus();

    void waitOn(UsersBus &users);
    bool isOn(const UsersBus &users);
    void waitForBridge();
    void requireMayStart() const;
    std::chrono::milliseconds startTime() const;
    std::chrono::milliseconds remaining() const;

    const GlobalOptions &m_options;
    QElapsedTimer m_clock;
    QString m_bus;
    QString m_busDescription;
    std::unique_ptr<BusDaemon> m_busDaemon;
    std::unique_ptr<BridgeProcess> m_bridge;
};
