#pragma once

#include <dbus/dbus.h>
#include <memory>

struct MessageUnref
{
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

/// One reference to a D-Bus message.
using Message = std::unique_ptr<DBusMessage, MessageUnref>;
