#include "upnp/DeviceDescription.h"

#include "core/Glib.h"
#include "core/Numbers.h"
#include "core/SearchCriteria.h"
#include "core/Xml.h"

namespace bridge {

namespace {

std::string childText(pugi::xml_node parent, std::string_view name)
{
    return elementText(childElement(parent, name));
}

/// At any depth: a device may be embedded in another.
pugi::xml_node findDevice(const XmlDocument &document, const std::string &udn)
{
    return document.root().find_node([&](pugi::xml_node node) {
        return localName(node.name()) == "device" && childText(node, "UDN") == udn;
    });
}

void readTexts(DeviceDescription &description, pugi::xml_node device)
{
    const auto url = [&](std::string_view name) {
        return absoluteUrl(childText(device, name), description.baseUrl);
    };
    description.deviceType = childText(device, "deviceType");
    description.friendlyName = childText(device, "friendlyName");
    description.manufacturer = childText(device, "manufacturer");
    description.manufacturerUrl = url("manufacturerURL");
    description.modelDescription = childText(device, "modelDescription");
    description.modelName = childText(device, "modelName");
    description.modelNumber = childText(device, "modelNumber");
    description.modelUrl = url("modelURL");
    description.serialNumber = childText(device, "serialNumber");
    description.presentationUrl = url("presentationURL");
}

/// The widest icon.
void readIcon(DeviceDescription &description, pugi::xml_node device)
{
    int32_t widest = -1;
    for (const pugi::xml_node icon : childElement(device, "iconList").children()) {
        const int32_t width = parseAs<int32_t>(childText(icon, "width")).value_or(0);
        if (width <= widest)
            continue;
        widest = width;
        description.iconUrl = absoluteUrl(childText(icon, "url"), description.baseUrl);
    }
}

void readContentDirectory(DeviceDescription &description, pugi::xml_node device)
{
    constexpr std::string_view wanted = "urn:schemas-upnp-org:service:ContentDirectory:";
    for (const pugi::xml_node service : childElement(device, "serviceList").children()) {
        const std::string type = childText(service, "serviceType");
        if (type.compare(0, wanted.size(), wanted) != 0 || !description.controlUrl.empty())
            continue;
        description.serviceType = type;
        description.controlUrl = absoluteUrl(childText(service, "controlURL"), description.baseUrl);
    }
}

void readDlnaCaps(DeviceDescription &description, pugi::xml_node device)
{
    for (std::string &name : splitList(childText(device, "X_DLNACAP"))) {
        // "content-synchronization" is a flag, "srs-rt-retention-period-3600" a name and a figure.
        const size_t digits = name.find_last_not_of("0123456789");
        uint32_t value = 0;
        if (digits != std::string::npos && digits + 1 < name.size() && name[digits] == '-') {
            value = parseAs<uint32_t>(name.substr(digits + 1)).value_or(0);
            name.resize(digits);
        }
        description.dlnaCaps.emplace_back(std::move(name), value);
    }
}

} // namespace

std::optional<DeviceDescription> readDescription(
    std::string body, const std::string &udn, const std::string &location)
{
    const XmlDocument document(std::move(body));
    const pugi::xml_node device = findDevice(document, udn);
    DeviceDescription description;
    description.udn = udn;
    description.location = location;
    description.baseUrl = childText(document.root(), "URLBase");
    if (g_uri_is_valid(description.baseUrl.c_str(), G_URI_FLAGS_ENCODED, nullptr) == FALSE)
        description.baseUrl = location;
    readTexts(description, device);
    readIcon(description, device);
    readDlnaCaps(description, device);
    readContentDirectory(description, device);
    if (description.controlUrl.empty())
        return std::nullopt;
    if (description.friendlyName.empty())
        description.friendlyName = udn;
    return description;
}

} // namespace bridge
