#pragma once

#include <string>

namespace bridge {

/// Names of the D-Bus errors that the service answers with.
namespace errors {
inline constexpr const char *operationFailed = "com.intel.dleyna.OperationFailed";
inline constexpr const char *badPath = "com.intel.dleyna.BadPath";
inline constexpr const char *badQuery = "com.intel.dleyna.BadQuery";
inline constexpr const char *cancelled = "com.intel.dleyna.Cancelled";
inline constexpr const char *notSupported = "com.intel.dleyna.NotSupported";
inline constexpr const char *unknownProperty = "com.intel.dleyna.UnknownProperty";
inline constexpr const char *unknownInterface = "com.intel.dleyna.UnknownInterface";
inline constexpr const char *notReached = "org.orka.MediaBridge1.Error.NotReached";
inline constexpr const char *unknownMethod = "org.freedesktop.DBus.Error.UnknownMethod";
inline constexpr const char *invalidArgs = "org.freedesktop.DBus.Error.InvalidArgs";
inline constexpr const char *limitsExceeded = "org.freedesktop.DBus.Error.LimitsExceeded";
inline constexpr const char *propertyReadOnly = "org.freedesktop.DBus.Error.PropertyReadOnly";
} // namespace errors

/// Why a call failed: a D-Bus error name and a sentence for people.
struct Failure
{
    std::string name;
    std::string text;
};

} // namespace bridge
