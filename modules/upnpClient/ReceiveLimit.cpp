#include "ReceiveLimit.h"

#include <QLibrary>

namespace {

constexpr long limitBytes = 1L << 30;

/// A function of the libdbus that Qt's D-Bus module itself uses.
template<typename Function>
Function libdbus(const char *name)
{
    return reinterpret_cast<Function>(QLibrary::resolve(QStringLiteral("dbus-1"), 3, name));
}

} // namespace

void raiseReceiveLimit(const QDBusConnection &connection)
{
    void *const raw = connection.internalPointer();
    const auto limit = libdbus<long (*)(void *)>("dbus_connection_get_max_received_size");
    const auto setLimit = libdbus<void (*)(void *, long)>("dbus_connection_set_max_received_size");
    if (raw && limit && setLimit && limit(raw) < limitBytes)
        setLimit(raw, limitBytes);
}
