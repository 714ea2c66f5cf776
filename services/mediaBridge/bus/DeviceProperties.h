#pragma once

#include "upnp/MediaServer.h"

#include <string>
#include <vector>

namespace bridge {

/// The value of a property of a server, floating; null where the server doesn't say.
GVariant *deviceProperty(const MediaServer &server, const std::string &name);

/// Names of the properties that are known without asking the server.
std::vector<std::string> devicePropertyNames();

} // namespace bridge
