#pragma once

#include "core/Glib.h"
#include "core/MediaObject.h"
#include "core/Properties.h"

#include <string>

namespace bridge {

/// What of a server its objects' properties depend on.
struct ServerContext
{
    /// D-Bus path of the server.
    std::string path;
    /// Where relative URLs start from.
    std::string baseUrl;
};

/// The value of one property, floating; null where the object has none. Any thread.
GVariant *propertyValue(const MediaObject &object, Prop prop, const ServerContext &server);

/// a{sv} of the wanted properties that the object has, floating. Any thread.
GVariant *propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server);

/// A D-Bus text, floating: what isn't UTF-8 in it is replaced.
GVariant *textVariant(const std::string &text);

} // namespace bridge
