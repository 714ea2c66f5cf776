#pragma once

#include "core/Glib.h"

#include <string>
#include <vector>

namespace bridge {

/// Interfaces of the service, by what carries them.
namespace interfaces {
inline constexpr const char *manager = "com.intel.dLeynaServer.Manager";
inline constexpr const char *device = "com.intel.dLeynaServer.MediaDevice";
inline constexpr const char *object = "org.gnome.UPnP.MediaObject2";
inline constexpr const char *container = "org.gnome.UPnP.MediaContainer2";
inline constexpr const char *item = "org.gnome.UPnP.MediaItem2";
inline constexpr const char *properties = "org.freedesktop.DBus.Properties";
inline constexpr const char *introspectable = "org.freedesktop.DBus.Introspectable";
inline constexpr const char *peer = "org.freedesktop.DBus.Peer";
} // namespace interfaces

/// What is declared of an interface; null for one that the service doesn't have. What isn't
/// declared can't be called, so that introspection and behaviour are one.
const GDBusInterfaceInfo *interfaceInfo(const std::string &name);

/// Signature of a method's arguments.
std::string inputSignature(const GDBusMethodInfo *method);

/// Introspection document of an object with these interfaces and child nodes.
std::string introspectionXml(
    const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children);

} // namespace bridge
