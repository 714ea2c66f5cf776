#pragma once

#include <string>
#include <string_view>

namespace bridge {

/// The names that clients see for a UPnP class.
struct MediaType
{
    /// Coarse: container, music, audio, video, video.movie, image, image.photo, item.unclassified.
    std::string_view type;
    /// The same with what the class says beyond, such as container.album.musicAlbum.
    std::string typeEx;
};

/// A class outside the known tree, or none, gives item.unclassified, or container for a container.
MediaType mediaTypeOfClass(std::string_view upnpClass, bool isContainer);

/// The UPnP class that a Type or TypeEx stands for; empty where it is neither.
std::string classOfMediaType(std::string_view typeEx);

} // namespace bridge
