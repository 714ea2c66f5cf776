#pragma once

#include "chain/ChildProcess.h"

#include <QStringList>

/// A message bus of our own, for machines without a session bus: it can activate nothing, has a
/// session bus's limits and ends with us.
class BusDaemon
{
public:
    /// Throws Failure (missing) with a sentence when no bus could be started.
    BusDaemon();

    /// How one is started that can activate nothing; the first word is the program. Throws as
    /// above.
    static QStringList commandLine();

    const QString &address() const { return m_address; }

private:
    ChildProcess m_process;
    QString m_address;
};
