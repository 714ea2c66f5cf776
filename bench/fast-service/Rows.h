#pragma once

#include <dbus/dbus.h>

/// The media objects that the fast service shows: tracks with all 17 properties that the plug-in
/// asks for, about 780 bytes each on the bus, twelve to an album.
namespace rows {

/// Appends track `number` (from 0) as one a{sv}.
void appendTrack(DBusMessageIter *parent, unsigned number);

/// Appends a container as one a{sv}; `path` is its object path.
void appendContainer(DBusMessageIter *parent, const char *path);

/// Appends what a server tells of itself as one a{sv}; `number` counts from 0.
void appendServer(DBusMessageIter *parent, const char *path, unsigned number);

} // namespace rows
