#pragma once

#include <QString>

/// The media service's names on the bus, written down a second time: a typing error in the plug-in
/// must not find its twin here.
namespace names {
inline const QString service = QStringLiteral("com.intel.dleyna-server");
inline const QString managerPath = QStringLiteral("/com/intel/dLeynaServer");
inline const QString serverPrefix = QStringLiteral("/com/intel/dLeynaServer/server/");
inline const QString manager = QStringLiteral("com.intel.dLeynaServer.Manager");
inline const QString bridge = QStringLiteral("org.orka.MediaBridge1");
inline const QString device = QStringLiteral("com.intel.dLeynaServer.MediaDevice");
inline const QString container = QStringLiteral("org.gnome.UPnP.MediaContainer2");
inline const QString object = QStringLiteral("org.gnome.UPnP.MediaObject2");
inline const QString item = QStringLiteral("org.gnome.UPnP.MediaItem2");
inline const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

inline const QString operationFailed = QStringLiteral("com.intel.dleyna.OperationFailed");
inline const QString badPath = QStringLiteral("com.intel.dleyna.BadPath");
inline const QString badQuery = QStringLiteral("com.intel.dleyna.BadQuery");
inline const QString unknownInterface = QStringLiteral("com.intel.dleyna.UnknownInterface");
inline const QString unknownProperty = QStringLiteral("com.intel.dleyna.UnknownProperty");
inline const QString unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");
inline const QString invalidArgs = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
} // namespace names
