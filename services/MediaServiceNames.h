#pragma once

/// The media service's names on the bus, for the bridge, the host and the benchmarks. The plug-in,
/// which is built alone, has its own; the tests write them down once more, so that a typing error
/// here doesn't find its twin there.
namespace mediaService {

inline constexpr char busName[] = "com.intel.dleyna-server";
/// Path of the manager object.
inline constexpr char managerPath[] = "/com/intel/dLeynaServer";
/// Common parent of all server objects; a server adds "/" and its encoded UDN.
inline constexpr char serverRootPath[] = "/com/intel/dLeynaServer/server";

/// By what carries them.
namespace interfaces {
inline constexpr char manager[] = "com.intel.dLeynaServer.Manager";
inline constexpr char bridge[] = "org.orka.MediaBridge1";
inline constexpr char device[] = "com.intel.dLeynaServer.MediaDevice";
inline constexpr char object[] = "org.gnome.UPnP.MediaObject2";
inline constexpr char container[] = "org.gnome.UPnP.MediaContainer2";
inline constexpr char item[] = "org.gnome.UPnP.MediaItem2";
inline constexpr char properties[] = "org.freedesktop.DBus.Properties";
inline constexpr char introspectable[] = "org.freedesktop.DBus.Introspectable";
inline constexpr char peer[] = "org.freedesktop.DBus.Peer";
} // namespace interfaces

/// Of the errors that it answers with.
namespace errors {
inline constexpr char operationFailed[] = "com.intel.dleyna.OperationFailed";
inline constexpr char badPath[] = "com.intel.dleyna.BadPath";
inline constexpr char badQuery[] = "com.intel.dleyna.BadQuery";
inline constexpr char cancelled[] = "com.intel.dleyna.Cancelled";
inline constexpr char notSupported[] = "com.intel.dleyna.NotSupported";
inline constexpr char unknownProperty[] = "com.intel.dleyna.UnknownProperty";
inline constexpr char unknownInterface[] = "com.intel.dleyna.UnknownInterface";
inline constexpr char unknownMethod[] = "org.freedesktop.DBus.Error.UnknownMethod";
inline constexpr char invalidArgs[] = "org.freedesktop.DBus.Error.InvalidArgs";
inline constexpr char accessDenied[] = "org.freedesktop.DBus.Error.AccessDenied";
inline constexpr char limitsExceeded[] = "org.freedesktop.DBus.Error.LimitsExceeded";
inline constexpr char propertyReadOnly[] = "org.freedesktop.DBus.Error.PropertyReadOnly";
/// A server that was named by its address couldn't be reached; only our bridge looks for one.
inline constexpr char notReached[] = "org.orka.MediaBridge1.Error.NotReached";
} // namespace errors

} // namespace mediaService
