#include "bus/BridgeProperties.h"

#include "upnp/ServerRegistry.h"

#include <unistd.h>

#ifndef ORKA_VERSION
#error "the build names the version"
#endif

namespace bridge {

namespace {

const int64_t startedAt = g_get_real_time() / G_USEC_PER_SEC;

} // namespace

const std::vector<BridgeProperty> &bridgeProperties()
{
    using R = const ServerRegistry &;
    static const std::vector<BridgeProperty> table{
        {"Version", "s",
            [](R) {
                return Value(std::string(ORKA_VERSION));
            }},
        {"StartedAt", "x",
            [](R) {
                return Value(startedAt);
            }},
        {"ProcessId", "u",
            [](R) {
                return Value(static_cast<uint32_t>(getpid()));
            }},
    };
    return table;
}

const BridgeProperty *findBridgeProperty(std::string_view name)
{
    for (const BridgeProperty &property : bridgeProperties()) {
        if (name == property.name)
            return &property;
    }
    return nullptr;
}

PropertyMap bridgePropertyMap(const ServerRegistry &registry)
{
    PropertyMap map;
    for (const BridgeProperty &property : bridgeProperties())
        map.emplace_back(property.name, property.read(registry));
    return map;
}

} // namespace bridge
