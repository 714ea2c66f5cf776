#pragma once

#include "core/MediaObject.h"
#include "core/Properties.h"
#include "core/Value.h"

namespace bridge {

/// What of a server its objects' properties depend on.
struct ServerContext
{
    /// D-Bus path of the server.
    std::string path;
    /// Where relative URLs start from.
    std::string baseUrl;
};

/// The value of one property; nothing where the object has none.
Value propertyValue(const MediaObject &object, Prop prop, const ServerContext &server);

/// The wanted properties that the object has.
PropertyMap propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server);

} // namespace bridge
