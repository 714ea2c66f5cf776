#include "bus/DeviceProperties.h"

#include "core/SearchCriteria.h"

namespace bridge {

namespace {

struct TextProperty
{
    const char *name;
    std::string DeviceDescription::*field;
};

constexpr TextProperty textProperties[] = {
    {"Location", &DeviceDescription::location},
    {"UDN", &DeviceDescription::udn},
    {"DeviceType", &DeviceDescription::deviceType},
    {"FriendlyName", &DeviceDescription::friendlyName},
    {"Manufacturer", &DeviceDescription::manufacturer},
    {"ManufacturerUrl", &DeviceDescription::manufacturerUrl},
    {"ModelDescription", &DeviceDescription::modelDescription},
    {"ModelName", &DeviceDescription::modelName},
    {"ModelNumber", &DeviceDescription::modelNumber},
    {"ModelURL", &DeviceDescription::modelUrl},
    {"SerialNumber", &DeviceDescription::serialNumber},
    {"PresentationURL", &DeviceDescription::presentationUrl},
    {"IconURL", &DeviceDescription::iconUrl},
};

Value capabilities(const std::optional<std::vector<std::string>> &didlNames)
{
    return didlNames ? Value(capabilityNames(*didlNames)) : Value();
}

Value dlnaCaps(const DeviceDescription &description)
{
    PropertyMap caps;
    for (const auto &[name, value] : description.dlnaCaps)
        caps.emplace_back(name, value);
    return caps.empty() ? Value() : Value(std::move(caps));
}

} // namespace

Value deviceProperty(const MediaServer &server, std::string_view name)
{
    const DeviceDescription &description = server.description();
    for (const TextProperty &known : textProperties) {
        const std::string &value = description.*known.field;
        if (name == known.name)
            return value.empty() ? Value() : Value(value);
    }
    if (name == "SearchCaps")
        return capabilities(server.searchCaps());
    if (name == "SortCaps")
        return capabilities(server.sortCaps());
    if (name == "DLNACaps")
        return dlnaCaps(description);
    return {};
}

PropertyMap deviceProperties(const MediaServer &server)
{
    PropertyMap map;
    const auto add = [&](const char *name) {
        Value value = deviceProperty(server, name);
        if (!value.isNone())
            map.emplace_back(name, std::move(value));
    };
    for (const char *name : {"DLNACaps", "SearchCaps", "SortCaps"})
        add(name);
    for (const TextProperty &known : textProperties)
        add(known.name);
    return map;
}

} // namespace bridge
