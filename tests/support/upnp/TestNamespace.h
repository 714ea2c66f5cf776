#pragma once

#include "Text.h"

#include <QStringList>

/// Moves this process into a network namespace of its own, with nothing in it but the loopback. To
/// be called first in main(), before any thread is started; an ordinary user gets a user namespace
/// as well. Returns an empty text, or a sentence that says why no namespace may be made here.
QString enterTestNamespace();

/// Adds an interface that carries multicast (one end of a veth pair; what is sent on it is heard by
/// every process of the namespace) with addresses such as "10.77.0.1/24" or "fd77::1/64". Returns
/// an empty text, or what went wrong.
QString addTestInterface(const QString &name, const QStringList &addresses);
/// One more address for an interface; the result as above.
QString addTestAddress(const QString &interface, const QString &address);
/// Removes it, as unplugging a cable for good does.
void removeTestInterface(const QString &name);

/// Enters a namespace with the interface "lan0", 10.77.0.1; why it wasn't possible, for QSKIP.
QString enterTestLan();
