#pragma once

#include "Failure.h"
#include "GlobalOptions.h"
#include "chain/ChildProcess.h"
#include "chain/LastingProcess.h"

#include <QObject>

#include <memory>

class Bus;
class UsersBus;

/// The bridge's program, and the process that we start of it: one that ends with us, or one that
/// outlives us by its idle time.
class BridgeProcess : public QObject
{
    Q_OBJECT

public:
    explicit BridgeProcess(const GlobalOptions &options);
    ~BridgeProcess() override;

    /// On a bus that is there: to outlive us where `lasts`. Throws Failure (missing) where the
    /// program isn't there.
    void start(const QString &bus, bool lasts);
    /// The same to outlive us, with a bus of its own, whose lock has been taken.
    void startWith(const UsersBus &bus);
    /// Whether what we started ends with us.
    bool isChild() const { return bool(m_child); }
    bool hasEnded() const;
    /// Once it is there: what it says is its own affair from now on.
    void isStarted();
    /// Throws Failure (missing), that it couldn't be started; `why` where it hasn't ended. Where it
    /// ended without a word somebody ended it: the service left.
    [[noreturn]] void fail(const QString &why) const;

    /// Whether the process is a bridge that an earlier command left running.
    static bool isLasting(uint process);
    /// Whether the service on the bus was one of another program file than a new one would be; it
    /// has been ended.
    static bool endedOutdated(const Bus &bus, const GlobalOptions &options);

signals:
    void ended();

private:
    void requireProgram() const;
    QStringList arguments(const QString &bus) const;
    void startLasting(LastingProcess::Plan plan);

    const GlobalOptions m_options;
    QString m_program;
    std::unique_ptr<ChildProcess> m_child;
    std::unique_ptr<LastingProcess> m_lasting;
};
