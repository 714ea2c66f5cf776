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

GVariant *capabilities(const std::optional<std::vector<std::string>> &didlNames)
{
    if (!didlNames)
        return nullptr;
    GVariantBuilder names;
    g_variant_builder_init(&names, G_VARIANT_TYPE_STRING_ARRAY);
    for (const std::string &name : capabilityNames(*didlNames))
        g_variant_builder_add(&names, "s", name.c_str());
    return g_variant_builder_end(&names);
}

GVariant *dlnaCaps(const DeviceDescription &description)
{
    if (description.dlnaCaps.empty())
        return nullptr;
    GVariantBuilder caps;
    g_variant_builder_init(&caps, G_VARIANT_TYPE_VARDICT);
    for (const auto &[name, value] : description.dlnaCaps)
        g_variant_builder_add(&caps, "{sv}", name.c_str(), g_variant_new_uint32(value));
    return g_variant_builder_end(&caps);
}

} // namespace

GVariant *deviceProperty(const MediaServer &server, const std::string &name)
{
    const DeviceDescription &description = server.description();
    for (const TextProperty &known : textProperties) {
        const std::string &value = description.*known.field;
        if (name == known.name)
            return value.empty() ? nullptr : textVariant(value);
    }
    if (name == "SearchCaps")
        return capabilities(server.searchCaps());
    if (name == "SortCaps")
        return capabilities(server.sortCaps());
    if (name == "DLNACaps")
        return dlnaCaps(description);
    return nullptr;
}

std::vector<std::string> devicePropertyNames()
{
    std::vector<std::string> names{"DLNACaps", "SearchCaps", "SortCaps"};
    for (const TextProperty &known : textProperties)
        names.emplace_back(known.name);
    return names;
}

} // namespace bridge
