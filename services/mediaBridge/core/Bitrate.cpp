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

/// `given` in bits: as it stands, or where bytes fit the file better. Where neither is anywhere
/// near the file, what was measured.
int64_t heldAgainst(double measured, int64_t given)
{
    constexpr double farOff = 4.0;
    const auto distance = [&](int64_t bits) {
        return std::abs(std::log(static_cast<double>(bits) / measured));
    };
    const int64_t nearest = distance(given) < distance(given * 8) ? given : given * 8;
    return distance(nearest) < std::log(farOff) ? nearest : std::llround(measured);
}

} // namespace

std::optional<int32_t> bitsPerSecond(const Resource &resource)
{
    if (!resource.rawBitrate || *resource.rawBitrate == 0)
        return std::nullopt;
    const int64_t given = *resource.rawBitrate;
    const auto measured = measuredBits(resource);
    const int64_t unmeasured = isAboveCodecLimit(resource.mimeType, given) ? given : given * 8;
    const int64_t bits = measured ? heldAgainst(*measured, given) : unmeasured;
    if (bits > std::numeric_limits<int32_t>::max())
        return std::nullopt;
    return static_cast<int32_t>(bits);
}

} // namespace bridge
