#pragma once

#include "upnp/MediaServer.h"

#include <string_view>

namespace bridge {

/// A property of a server.
struct DeviceProperty
{
    const char *name;
    /// D-Bus signature of the value.
    const char *signature;
    /// Gives nothing where the server doesn't say; null for one that the server has to be asked
    /// for.
    Value (*read)(const MediaServer &server);
};

const std::vector<DeviceProperty> &deviceProperties();
/// Null for a name that isn't a property's.
const DeviceProperty *findDeviceProperty(std::string_view name);
/// The values of all that are known without asking the server.
PropertyMap devicePropertyMap(const MediaServer &server);

} // namespace bridge
