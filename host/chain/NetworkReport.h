#pragma once

#include <QStringList>

/// What only our own bridge tells: where it can hear media servers, and why one may be missing.
struct NetworkReport
{
    /// False for another media service, of which nothing is known.
    bool isTold = false;
    /// Addresses that others can reach.
    QStringList listening;
    /// A sentence each; those about servers that should be there and aren't, or
    /// aren't yet, are `absent`.
    QStringList troubles;
    QStringList absent;

    static NetworkReport read();
    /// Whether this machine has no address, and servers elsewhere can't be there.
    bool isCutOff() const;
};

/// Why there is no media server at all, and what to do; `which` is the one that was named, if any.
QString noServersSentence(const NetworkReport &report, const QString &which = QString());
