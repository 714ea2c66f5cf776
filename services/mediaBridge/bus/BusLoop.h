#pragma once

#include "core/Timer.h"

#include <dbus/dbus.h>

namespace bridge {

/// Lets GLib's main loop send, receive and dispatch for a connection, as long as it lives.
class BusLoop
{
public:
    explicit BusLoop(DBusConnection *connection);
    ~BusLoop();
    BusLoop(const BusLoop &) = delete;
    BusLoop &operator=(const BusLoop &) = delete;

private:
    void dispatchLater();

    DBusConnection *m_connection;
    Timer m_dispatch;
};

} // namespace bridge
