#include "bus/DeviceProperties.h"

#include "core/SearchCriteria.h"

namespace bridge {

namespace {

template<std::string DeviceDescription::*field>
Value text(const MediaServer &server)
{
    const std::string &value = server.description().*field;
    return value.empty() ? Value() : Value(value);
}

Value capabilities(const std::optional<std::vector<std::string>> &didlNames)
{
    return didlNames ? Value(capabilityNames(*didlNames)) : Value();
}

Value searchCaps(const MediaServer &server)
{
    return capabilities(server.searchCaps());
}

Value sortCaps(const MediaServer &server)
{
    return capabilities(server.sortCaps());
}

Value dlnaCaps(const MediaServer &server)
{
    PropertyMap caps;
    for (const auto &[name, value] : server.description().dlnaCaps)
        caps.emplace_back(name, value);
    return caps.empty() ? Value() : Value(std::move(caps));
}

} // namespace

const std::vector<DeviceProperty> &deviceProperties()
{
    using D = DeviceDescription;
    static const std::vector<DeviceProperty> table{
        {"Location", "s", &text<&D::location>},
        {"UDN", "s", &text<&D::udn>},
        {"DeviceType", "s", &text<&D::deviceType>},
        {"FriendlyName", "s", &text<&D::friendlyName>},
        {"Manufacturer", "s", &text<&D::manufacturer>},
        {"ManufacturerUrl", "s", &text<&D::manufacturerUrl>},
        {"ModelDescription", "s", &text<&D::modelDescription>},
        {"ModelName", "s", &text<&D::modelName>},
        {"ModelNumber", "s", &text<&D::modelNumber>},
        {"ModelURL", "s", &text<&D::modelUrl>},
        {"SerialNumber", "s", &text<&D::serialNumber>},
        {"PresentationURL", "s", &text<&D::presentationUrl>},
        {"IconURL", "s", &text<&D::iconUrl>},
        {"DLNACaps", "a{sv}", &dlnaCaps},
        {"SearchCaps", "as", &searchCaps},
        {"SortCaps", "as", &sortCaps},
        {"SystemUpdateID", "u", nullptr},
    };
    return table;
}

const DeviceProperty *findDeviceProperty(std::string_view name)
{
    for (const DeviceProperty &property : deviceProperties()) {
        if (name == property.name)
            return &property;
    }
    return nullptr;
}

PropertyMap devicePropertyMap(const MediaServer &server)
{
    PropertyMap map;
    for (const DeviceProperty &property : deviceProperties()) {
        Value value = property.read ? property.read(server) : Value();
        if (!value.isNone())
            map.emplace_back(property.name, std::move(value));
    }
    return map;
}

} // namespace bridge
