#include "core/Bitrate.h"

#include <cmath>
#include <limits>

namespace bridge {

namespace {

/// Average over the whole file; nothing where it can't be told.
std::optional<double> measuredBits(const Resource &resource)
{
    if (!resource.size || !resource.duration || *resource.size == 0 || *resource.duration == 0)
        return std::nullopt;
    return static_cast<double>(*resource.size) * 8000.0 / static_cast<double>(*resource.duration);
}

/// Whether no encoder of this kind makes as many as eight times `bitrate` bits per second.
bool isAboveCodecLimit(const std::string &mimeType, int64_t bitrate)
{
    constexpr int64_t lossyAudioLimit = 64'000;
    return bitrate >= lossyAudioLimit
        && (mimeType == "audio/mpeg" || mimeType == "audio/mp4" || mimeType == "audio/aac"
            || mimeType == "audio/ogg" || mimeType == "audio/x-ms-wma");
}

bool countsBits(const Resource &resource, int64_t bitrate)
{
    const auto measured = measuredBits(resource);
    if (!measured)
        return isAboveCodecLimit(resource.mimeType, bitrate);
    const double given = static_cast<double>(bitrate);
    return std::abs(std::log(given / *measured)) < std::abs(std::log(8.0 * given / *measured));
}

} // namespace

std::optional<int32_t> bitsPerSecond(const Resource &resource)
{
    if (!resource.rawBitrate || *resource.rawBitrate == 0)
        return std::nullopt;
    const int64_t given = *resource.rawBitrate;
    const int64_t bits = countsBits(resource, given) ? given : given * 8;
    if (bits > std::numeric_limits<int32_t>::max())
        return std::nullopt;
    return static_cast<int32_t>(bits);
}

} // namespace bridge
