#include "upnp/DeviceDescription.h"

#include "core/Glib.h"
#include "core/Limits.h"
#include "core/Numbers.h"
#include "core/SearchCriteria.h"
#include "core/Text.h"
#include "core/Xml.h"
#include "upnp/HttpUrl.h"
#include "upnp/SsdpMessage.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr size_t longestName = 100;

std::string childText(pugi::xml_node parent, std::string_view name)
{
    return shortened(elementText(childElement(parent, name)), limits::deviceTextBytes);
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
    std::string url;
    for (const pugi::xml_node icon : childElement(device, "iconList").children()) {
        const int32_t width = parseAs<int32_t>(childText(icon, "width")).value_or(0);
        if (width <= widest)
            continue;
        widest = width;
        url = childText(icon, "url");
    }
    description.iconUrl = absoluteUrl(url, description.baseUrl);
}

/// "urn:schemas-upnp-org:service:ContentDirectory:" and a version.
bool isContentDirectory(const std::string &serviceType)
{
    constexpr std::string_view name = "urn:schemas-upnp-org:service:ContentDirectory:";
    constexpr size_t longestVersion = 3;
    const size_t end = serviceType.size();
    return serviceType.compare(0, name.size(), name) == 0 && end > name.size()
        && end <= name.size() + longestVersion
        && std::all_of(serviceType.begin() + name.size(), serviceType.end(),
            [](char c) { return c >= '0' && c <= '9'; });
}

/// Calls go to the machine that described itself, however it writes its address, and to no other.
std::string ownUrl(const std::string &url, const std::string &location)
{
    const auto parts = parseHttpUrl(url);
    if (!parts || parts->host != hostOf(location))
        return {};
    return withScopeOf(url, location);
}

/// The first of any type and anywhere; empty where there is none.
pugi::xml_node contentDirectoryOf(pugi::xml_node device)
{
    return childElement(device, "serviceList").find_child([](pugi::xml_node service) {
        return isContentDirectory(childText(service, "serviceType"));
    });
}

/// At any depth: a device may be embedded in another. Without a UDN the first that is a media
/// server, else the first.
pugi::xml_node findDevice(const XmlDocument &document, const std::string &udn)
{
    const auto find = [&](auto isMeant) {
        return document.root().find_node([&](pugi::xml_node node) {
            return localName(node.name()) == "device" && isMeant(node);
        });
    };
    if (!udn.empty())
        return find([&](pugi::xml_node device) { return childText(device, "UDN") == udn; });
    const pugi::xml_node server =
        find([](pugi::xml_node device) { return bool(contentDirectoryOf(device)); });
    return server ? server : find([](pugi::xml_node) { return true; });
}

void readContentDirectory(DeviceDescription &description, pugi::xml_node device)
{
    for (const pugi::xml_node service : childElement(device, "serviceList").children()) {
        const std::string type = childText(service, "serviceType");
        if (!isContentDirectory(type) || !description.controlUrl.empty())
            continue;
        description.serviceType = type;
        description.controlUrl =
            ownUrl(absoluteUrl(childText(service, "controlURL"), description.baseUrl),
                description.location);
    }
}

void readDlnaCaps(DeviceDescription &description, pugi::xml_node device)
{
    for (std::string &name : splitList(childText(device, "X_DLNACAP"), limits::repeated)) {
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

std::string whatIsWrong(const DeviceDescription &description, pugi::xml_node device)
{
    const std::string what =
        "describes \"" + shortened(description.friendlyName, longestName) + "\", ";
    const pugi::xml_node directory = contentDirectoryOf(device);
    if (!directory)
        return what + "which is no media server: it has no content directory";
    if (namesUser(absoluteUrl(childText(directory, "controlURL"), description.baseUrl)))
        return what + "whose content directory has a user name in its address and isn't asked";
    if (description.controlUrl.empty())
        return what + "whose content directory is at another machine, which isn't asked";
    return what + "which has no UDN";
}

} // namespace

DescriptionReading readDescription(
    std::string body, const std::string &udn, const std::string &location, std::string_view charset)
{
    const XmlDocument document(std::move(body), limits::tags(0), charset);
    const pugi::xml_node device = findDevice(document, udn);
    if (!device)
        return {{}, udn.empty() ? "is no description of a device" : "doesn't describe " + udn,
            bool(findDevice(document, {}))};
    DeviceDescription description;
    description.udn = childText(device, "UDN");
    description.location = location;
    description.baseUrl = ownUrl(childText(document.root(), "URLBase"), location);
    if (description.baseUrl.empty())
        description.baseUrl = location;
    readTexts(description, device);
    readIcon(description, device);
    readDlnaCaps(description, device);
    readContentDirectory(description, device);
    if (description.friendlyName.empty())
        description.friendlyName = description.udn;
    if (description.controlUrl.empty() || !isProperUdn(description.udn))
        return {{},
            document.isWhole() ? whatIsWrong(description, device)
                               : "can't be read: its XML is cut off or broken",
            true};
    return {std::move(description), {}, true};
}

} // namespace bridge
