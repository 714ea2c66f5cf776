// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/export.h>

#include <QDBusConnection>
#include <QObject>
#include <QString>

class CMPath;

/// Stops the program when `condition` is false, in every build: prints the
/// condition's text and its source to standard error and aborts.
#define ORKA_ASSERT(condition) \
    ((condition) ? static_cast<void>(0) : orkaAssertFailed(#condition, __FILE__, __LINE__))

/// Prints "ASSERT: "text" in source:line" and aborts; the far end of ORKA_ASSERT.
[[noreturn]] ORKA_API_EXPORT void orkaAssertFailed(const char *text, const char *source, int line);

/// Checked connect for signals and slots named by text (`SIGNAL()`, `SLOT()`).
///
/// Asserts "verifyConnectionSignalParameters(sender, signal, receiver, type)" when the two objects
/// live in different threads (or `type` is queued) and a parameter of the signal that is not a
/// pointer has no registered metatype, and "connection" when the connection could not be made.
/// Any thread.
ORKA_API_EXPORT QMetaObject::Connection orkaConnect(const QObject *sender, const char *signal,
    const QObject *receiver, const char *slot, Qt::ConnectionType type = Qt::AutoConnection);

/// The bus connection that every worker shares. Opened by the first call, which waits for the bus:
/// a host opens it before it loads a plug-in. A connection that could not be opened is returned
/// unconnected. Any thread.
ORKA_API_EXPORT QDBusConnection orkaDBusConnection();

/// Chooses the bus of `orkaDBusConnection()`: "session" (the default), "system" or a D-Bus
/// address; lets go of the connection that is open, which closes with the last copy of it. Returns
/// whether the new one could be opened; its `lastError()` says why not. For hosts and tests, while
/// no worker is loaded. Without it, the environment variable ORKA_DBUS chooses.
ORKA_API_EXPORT bool orkaOpenDBusConnection(const QString &bus);

/// Key of the service id in a worker's configuration hash.
ORKA_API_EXPORT const QString &OrkaService_Id();

/// Base of the path that takes "prepare items" set-data requests: "playlist/prepareItems".
ORKA_API_EXPORT const QString &OrkaPlayListPrepareItems();

/// Path of the value that holds the device's network addresses, an `OrkaNetworkInfo`.
ORKA_API_EXPORT const CMPath &OrkaNetworkInfoPath();
