#pragma once

#include "MediaServiceNames.h"

#include <optional>
#include <string>
#include <string_view>

namespace bridge {

inline constexpr std::string_view managerPath = mediaService::managerPath;
inline constexpr std::string_view serverRootPath = mediaService::serverRootPath;
/// UPnP object id of every server's root container, whose path is the server's own.
inline constexpr std::string_view rootObjectId = "0";

/// Names one object of one media server, as the two sides of the bridge need it.
struct ObjectAddress
{
    /// Last element of the server's path: its UDN, encoded.
    std::string serverName;
    /// UPnP object id, any bytes but NUL; "0" for the server path itself.
    std::string objectId;
};

/// Path of the server with this UDN: every byte outside [0-9A-Za-z] becomes "_xx", lower-case hex.
std::string serverPathFromUdn(std::string_view udn);

/// Path of an object below `serverPath`: the id's bytes in lower-case hex. The root id gives
/// `serverPath` itself; an empty id gives an empty path, since no path can name such an object.
std::string objectPath(std::string_view serverPath, std::string_view objectId);

/// Splits a path below serverRootPath. Nothing comes back where the path is badly formed: no server
/// element, more than one element below the server, an odd number of digits, a digit that isn't hex
/// or a NUL byte. Whether the server exists is not looked at. Upper-case digits are taken.
std::optional<ObjectAddress> parseObjectPath(std::string_view path);

} // namespace bridge
