#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bridge {

/// Interfaces of the service, by what carries them.
namespace interfaces {
inline constexpr const char *manager = "com.intel.dLeynaServer.Manager";
inline constexpr const char *bridge = "org.orka.MediaBridge1";
inline constexpr const char *device = "com.intel.dLeynaServer.MediaDevice";
inline constexpr const char *object = "org.gnome.UPnP.MediaObject2";
inline constexpr const char *container = "org.gnome.UPnP.MediaContainer2";
inline constexpr const char *item = "org.gnome.UPnP.MediaItem2";
inline constexpr const char *properties = "org.freedesktop.DBus.Properties";
inline constexpr const char *introspectable = "org.freedesktop.DBus.Introspectable";
inline constexpr const char *peer = "org.freedesktop.DBus.Peer";
} // namespace interfaces

/// One method of an interface. Arguments stand as signature and name, parted by spaces:
/// "uOffset aa{sv}Children".
struct MethodDeclaration
{
    const char *interface;
    const char *name;
    const char *in;
    const char *out;
};

/// The signature of arguments that are written as above, without their names.
std::string signatureOf(std::string_view arguments);

/// Introspection document of an object with these methods, with the properties and signals that
/// belong to `interfaceNames`, and with these child nodes.
std::string introspectionXml(const std::vector<MethodDeclaration> &methods,
    const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children);

} // namespace bridge
