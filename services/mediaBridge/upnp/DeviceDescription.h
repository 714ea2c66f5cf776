#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bridge {

/// What a device description says of a media server. A text that it lacks is empty.
struct DeviceDescription
{
    std::string udn;
    std::string location;
    std::string deviceType;
    std::string friendlyName;
    std::string manufacturer;
    std::string manufacturerUrl;
    std::string modelDescription;
    std::string modelName;
    std::string modelNumber;
    std::string modelUrl;
    std::string serialNumber;
    std::string presentationUrl;
    std::string iconUrl;
    /// Such as "srs-rt-retention-period"; values that are numbers keep them.
    std::vector<std::pair<std::string, uint32_t>> dlnaCaps;
    /// Of the content directory.
    std::string serviceType;
    std::string controlUrl;
    /// Where relative URLs in listings start from.
    std::string baseUrl;
};

/// What a document at a description's place turned out to be.
struct DescriptionReading
{
    /// Of a media server.
    std::optional<DeviceDescription> description;
    /// Else what is wrong with it; goes on after its URL: "is no description of a device".
    std::string problem;
    /// It describes some device.
    bool isDevice = false;
};

/// Reads the description of the device `udn` (which may be embedded in another; an empty one stands
/// for the first media server) out of `body`, which was loaded from `location`. A media server has
/// a content directory that can be called on that same machine. `charset` as for an XmlDocument.
DescriptionReading readDescription(std::string body, const std::string &udn,
    const std::string &location, std::string_view charset);

} // namespace bridge
