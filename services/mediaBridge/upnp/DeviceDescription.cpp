#include "upnp/DeviceDescription.h"

#include "core/Glib.h"
#include "core/Numbers.h"
#include "core/Xml.h"

namespace bridge {

namespace {

xmlNode *findDevice(const xmlNode *parent, const std::string &udn)
{
    for (const xmlNode *child = elementFrom(parent->children); child;
         child = elementFrom(child->next)) {
        const std::string_view name = localName(child->name);
        if (name == "device" && elementText(childElement(child, "UDN")) == udn)
            return const_cast<xmlNode *>(child);
        if (name != "device" && name != "deviceList")
            continue;
        if (xmlNode *nested = findDevice(child, udn))
            return nested;
    }
    return nullptr;
}

GUri *parseUrl(const std::string &url)
{
    return g_uri_parse(url.c_str(), G_URI_FLAGS_ENCODED, nullptr);
}

std::string urlBase(xmlDoc *doc, const std::string &location)
{
    const std::string given = elementText(childElement(xmlDocGetRootElement(doc), "URLBase"));
    GUri *url = parseUrl(given);
    if (!url)
        return location;
    g_uri_unref(url);
    return given;
}

Ref<GUPnPDeviceInfo> deviceInfo(
    xmlDoc *doc, xmlNode *device, const DeviceDescription &description, GUPnPContext *context)
{
    GUri *base = parseUrl(description.baseUrl);
    const Ref<GUPnPXMLDoc> wrapped(gupnp_xml_doc_new(doc));
    auto *info = static_cast<GUPnPDeviceInfo *>(g_object_new(GUPNP_TYPE_DEVICE_PROXY, "context",
        context, "document", wrapped.get(), "element", device, "udn", description.udn.c_str(),
        "location", description.location.c_str(), "url-base", base, "resource-factory",
        gupnp_resource_factory_get_default(), nullptr));
    if (base)
        g_uri_unref(base);
    return Ref<GUPnPDeviceInfo>(info);
}

void readContentDirectory(DeviceDescription &description, GUPnPDeviceInfo *info)
{
    constexpr std::string_view wanted = "urn:schemas-upnp-org:service:ContentDirectory:";
    GList *services = gupnp_device_info_list_services(info);
    for (GList *entry = services; entry; entry = entry->next) {
        auto *service = GUPNP_SERVICE_INFO(entry->data);
        const std::string type = textOrEmpty(gupnp_service_info_get_service_type(service));
        if (type.compare(0, wanted.size(), wanted) != 0 || !description.controlUrl.empty())
            continue;
        description.serviceType = type;
        description.controlUrl = takeString(gupnp_service_info_get_control_url(service));
    }
    g_list_free_full(services, g_object_unref);
}

void readDlnaCaps(DeviceDescription &description, GUPnPDeviceInfo *info)
{
    GList *caps = gupnp_device_info_list_dlna_capabilities(info);
    for (GList *entry = caps; entry; entry = entry->next) {
        std::string name = static_cast<const char *>(entry->data);
        // "content-synchronization" is a flag, "srs-rt-retention-period-3600" a name and a figure.
        const size_t digits = name.find_last_not_of("0123456789");
        uint32_t value = 0;
        if (digits != std::string::npos && digits + 1 < name.size() && name[digits] == '-') {
            value = parseAs<uint32_t>(name.substr(digits + 1)).value_or(0);
            name.resize(digits);
        }
        description.dlnaCaps.emplace_back(std::move(name), value);
    }
    g_list_free_full(caps, g_free);
}

void readTexts(DeviceDescription &description, GUPnPDeviceInfo *info)
{
    description.deviceType = textOrEmpty(gupnp_device_info_get_device_type(info));
    description.friendlyName = takeString(gupnp_device_info_get_friendly_name(info));
    description.manufacturer = takeString(gupnp_device_info_get_manufacturer(info));
    description.manufacturerUrl = takeString(gupnp_device_info_get_manufacturer_url(info));
    description.modelDescription = takeString(gupnp_device_info_get_model_description(info));
    description.modelName = takeString(gupnp_device_info_get_model_name(info));
    description.modelNumber = takeString(gupnp_device_info_get_model_number(info));
    description.modelUrl = takeString(gupnp_device_info_get_model_url(info));
    description.serialNumber = takeString(gupnp_device_info_get_serial_number(info));
    description.presentationUrl = takeString(gupnp_device_info_get_presentation_url(info));
    description.iconUrl = takeString(gupnp_device_info_get_icon_url(
        info, nullptr, -1, -1, -1, TRUE, nullptr, nullptr, nullptr, nullptr));
}

} // namespace

std::optional<DeviceDescription> readDescription(std::string_view body, const std::string &udn,
    const std::string &location, GUPnPContext *context)
{
    XmlDoc doc = parseXml(body);
    xmlNode *device = doc ? findDevice(xmlDocGetRootElement(doc.get()), udn) : nullptr;
    if (!device)
        return std::nullopt;
    DeviceDescription description;
    description.udn = udn;
    description.location = location;
    description.baseUrl = urlBase(doc.get(), location);
    const Ref<GUPnPDeviceInfo> info = deviceInfo(doc.release(), device, description, context);
    readTexts(description, info.get());
    readDlnaCaps(description, info.get());
    readContentDirectory(description, info.get());
    if (description.controlUrl.empty())
        return std::nullopt;
    if (description.friendlyName.empty())
        description.friendlyName = udn;
    return description;
}

} // namespace bridge
