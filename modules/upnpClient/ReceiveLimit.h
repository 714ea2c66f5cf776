#pragma once

#include <QDBusConnection>

/// Lets a connection take up to 1 GiB of replies that nobody has released yet; what is more than
/// that stays. libdbus's own limit is 63 MiB, less than the listings of a big folder's
/// sub-containers, and a connection that reaches it even for a moment stops receiving for good:
/// the message that frees it is released on the worker's thread, from where Qt can't switch
/// reading on again. Does nothing where libdbus can't be reached.
void raiseReceiveLimit(const QDBusConnection &connection);
