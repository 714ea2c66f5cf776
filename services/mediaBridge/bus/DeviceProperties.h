#pragma once

#include "upnp/MediaServer.h"

#include <string_view>

namespace bridge {

/// The value of a property of a server; nothing where the server doesn't say.
Value deviceProperty(const MediaServer &server, std::string_view name);

/// Those of all properties that are known without asking the server.
PropertyMap deviceProperties(const MediaServer &server);

} // namespace bridge
