#pragma once

#include <QString>

/// The media service's names on the bus, written down a second time: a typing error in the plug-in
/// must not find its twin here.
namespace names {
const QString service = QStringLiteral("com.intel.dleyna-server");
const QString managerPath = QStringLiteral("/com/intel/dLeynaServer");
const QString serverPrefix = QStringLiteral("/com/intel/dLeynaServer/server/");
const QString manager = QStringLiteral("com.intel.dLeynaServer.Manager");
const QString device = QStringLiteral("com.intel.dLeynaServer.MediaDevice");
const QString container = QStringLiteral("org.gnome.UPnP.MediaContainer2");
const QString object = QStringLiteral("org.gnome.UPnP.MediaObject2");
const QString item = QStringLiteral("org.gnome.UPnP.MediaItem2");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

const QString operationFailed = QStringLiteral("com.intel.dleyna.OperationFailed");
const QString badPath = QStringLiteral("com.intel.dleyna.BadPath");
const QString badQuery = QStringLiteral("com.intel.dleyna.BadQuery");
const QString unknownInterface = QStringLiteral("com.intel.dleyna.UnknownInterface");
const QString unknownProperty = QStringLiteral("com.intel.dleyna.UnknownProperty");
const QString unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");
const QString invalidArgs = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
} // namespace names
