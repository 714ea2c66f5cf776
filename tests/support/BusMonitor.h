#pragma once

#include <QString>
#include <QStringList>

struct DBusConnection;
struct DBusMessage;

/// Sees every message on a bus from the moment it is made, those to the daemon included.
class BusMonitor
{
public:
    explicit BusMonitor(const QString &address);
    ~BusMonitor();
    BusMonitor(const BusMonitor &) = delete;
    BusMonitor &operator=(const BusMonitor &) = delete;

    /// The method calls that `sender` (a unique name) has sent so far, as "MEMBER FIRST-TEXT";
    /// `until` is a call of the test's own that marks the end.
    QStringList callsOf(const QString &sender, const QString &until);

private:
    DBusMessage *next();

    DBusConnection *m_connection;
};
