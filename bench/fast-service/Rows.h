#pragma once

#include "core/Value.h"

/// The media objects that the fast service shows.
namespace rows {

/// Track `number`, from 0, with all 17 properties that the plug-in asks for: about 780 bytes on the
/// bus, twelve to an album.
bridge::PropertyMap track(unsigned number);

bridge::PropertyMap container(const std::string &path);

/// What server `number`, from 0, tells of itself.
bridge::PropertyMap server(unsigned number);

} // namespace rows
