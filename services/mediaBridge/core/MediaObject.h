#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bridge {

/// One way to get an object's content. Numbers that the server didn't give, or gave in a form that
/// nobody can read, are absent.
struct Resource
{
    std::string uri;
    /// Third and fourth field of the protocol info, with the first as `protocol`.
    std::string protocol;
    std::string mimeType;
    std::string dlnaProfile;
    /// Made by the server on the fly from another resource.
    bool isConverted = false;
    /// Bytes.
    std::optional<int64_t> size;
    /// Milliseconds.
    std::optional<int64_t> duration;
    /// As the server gave it: bits or bytes per second, see Bitrate.h.
    std::optional<int32_t> rawBitrate;
    /// Hertz.
    std::optional<int32_t> sampleRate;
    std::optional<int32_t> bitsPerSample;
    /// Pixels.
    std::optional<int32_t> width;
    std::optional<int32_t> height;
    std::optional<int32_t> colorDepth;
};

/// One container or item as a server described it. A text that the server didn't give is empty.
struct MediaObject
{
    bool isContainer = false;
    std::string id;
    std::string parentId;
    std::string refId;
    std::string title;
    std::string creator;
    std::string upnpClass;
    std::vector<std::string> artists;
    std::string album;
    std::string genre;
    std::string date;
    std::string albumArtUri;
    std::optional<int32_t> trackNumber;
    std::optional<bool> restricted;
    std::optional<bool> searchable;
    std::optional<uint32_t> childCount;
    std::optional<uint32_t> objectUpdateId;
    std::optional<uint32_t> containerUpdateId;
    std::optional<uint32_t> totalDeletedChildCount;
    std::optional<uint32_t> dlnaManaged;
    /// UPnP class, and whether classes derived from it may be created too.
    std::vector<std::pair<std::string, bool>> createClasses;
    std::vector<Resource> resources;

    /// The resource whose figures the object goes by: the original over HTTP before a converted
    /// one, anything over HTTP before the rest. Null where there is none.
    const Resource *primaryResource() const;
};

} // namespace bridge
